// The folders that are open besides the backup root: opening, searching and closing them, and what
// of them is kept for the next start.

#include <QApplication>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSplitter>
#include <QStackedWidget>
#include <QUrl>
#include <algorithm>
#include <filesystem>

#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "foundation/Log.h"
#include "foundation/files/FolderTree.h"
#include "foundation/files/Path.h"
#include "ui_MainWindow.h"
#include "widgets/desktop/Alert.h"
#include "widgets/desktop/FolderChooser.h"
#include "widgets/desktop/MainThread.h"

namespace snaplift {
namespace {

// The folders that are dropped: all that is dropped, or none where one of it is no local file.
std::vector<std::string> droppedFolders(const QDropEvent& drop) {
  std::vector<std::string> folders;
  for (const QUrl& url : drop.mimeData()->urls()) {
    const std::string folder = folderMeantBy(QFile::encodeName(url.toLocalFile()).toStdString());
    if (!url.isLocalFile() || !folderIdentity(folder)) {
      return {};
    }
    folders.push_back(folder);
  }
  return folders;
}

AlertText textOfNoBackups(const std::string& folder, const BackupSearchResult& result) {
  const QString title = folderTitle(folder);
  if (const auto problem = whyFolderCannotBeRead(folder)) {
    return {QString("“%1” Cannot Be Opened").arg(title), QString::fromStdString(*problem)};
  }
  QString text(
      "Snaplift looked into every folder below it. A backup is a folder that holds a file "
      "“Info.plist” beside a “Manifest.plist”, and many files with long names of digits and "
      "letters.");
  if (result.unreadable > 0) {
    text += QString("\n\nThere is no permission to read %1 of its folders.").arg(result.unreadable);
  }
  return {QString("No Backups Found in “%1”").arg(title), text};
}

struct DiskWithBackups {
  std::string disk;
  std::vector<std::string> roots;
  std::size_t backups = 0;
};

std::vector<DiskWithBackups> connectedDisksWithBackups(const std::stop_token& stop) {
  std::vector<DiskWithBackups> found;
  for (const std::string& disk : connectedDisks()) {
    const FolderTree tree(disk);
    DiskWithBackups with{disk, {}, 0};
    for (const std::string& root :
         tree.error() ? std::vector<std::string>() : knownBackupRoots(tree)) {
      const std::size_t before = with.backups;
      tree.visitEntries(root, [&](std::string_view name, bool isFolder) {
        with.backups += isFolder && looksLikeBackup(joinPath(joinPath(disk, root), name));
        return !stop.stop_requested();
      });
      if (with.backups > before) {
        with.roots.push_back(joinPath(disk, root));
      }
    }
    if (with.backups > 0) {
      found.push_back(std::move(with));
    }
  }
  return found;
}

}  // namespace

void SLAppDelegate::connectFolders() {
  m_search = std::make_unique<FolderSearch>(FolderSearch::Events{
      .found = [this](const std::string& folder,
                      auto backups) { addBackups(folder, std::move(backups)); },
      .looking = [this](const std::string& place) { showSearch(place); },
      .ended = [this](const std::string& folder, const BackupSearchResult& result,
                      bool stopped) { searchEnded(folder, result, stopped); }});
  m_window->setAcceptDrops(true);
  connect(m_ui->actionOpenFolder, &QAction::triggered, this, [this] { chooseFolderToOpen(); });
  connect(m_ui->chooseFolderButton, &QPushButton::clicked, this, [this] { chooseFolderToOpen(); });
  connect(m_ui->actionCloseFolder, &QAction::triggered, this,
          [this] { closeFolderOfSelectedBackup(); });
  connect(m_ui->stopSearch, &QPushButton::clicked, this, [this] { m_search->stop(); });
  connect(m_ui->menuOpenRecent, &QMenu::aboutToShow, this, [this] { fillRecentFolders(); });
}

void SLAppDelegate::chooseFolderToOpen() {
  chooseFolder(m_window.get(), "Open", [this](const std::string& folder) { openFolder(folder); });
}

void SLAppDelegate::openFolder(const std::string& path) {
  searchFolder(path, true);
}

void SLAppDelegate::searchFolder(const std::string& path, bool wasAskedFor) {
  // Absolute, for the day on which it is opened again from elsewhere.
  std::error_code ignored;
  const std::string folder =
      folderMeantBy(std::filesystem::absolute(path, ignored).lexically_normal().string());
  if (wasAskedFor) {
    m_askedFor.insert(folder);
  }
  m_search->search(folder);
  showSearch(folder);
}

void SLAppDelegate::showSearch(const std::string& place) {
  const QString text = "Searching for backups in " + QString::fromStdString(escapedForLog(place));
  m_ui->searchText->setText(m_ui->searchText->fontMetrics().elidedText(
      text, Qt::ElideMiddle, std::max(m_ui->searchText->width(), 300)));
  m_ui->searchText->setAccessibleName(text);
  m_ui->searchBar->show();
}

void SLAppDelegate::addBackups(const std::string& folder,
                               std::vector<std::unique_ptr<BackupModel>> backups) {
  const bool isFirst = std::ranges::find(m_bc->folders(), folder) == m_bc->folders().end();
  const std::vector<BackupModel*> added = m_bc->addBackups(folder, std::move(backups));
  if (added.empty()) {
    return;
  }
  const bool wasAskedFor = m_askedFor.contains(folder);
  if (isFirst && wasAskedFor) {
    m_state.addRecentFolder(folder);
  }
  if (!wasAskedFor || (!isFirst && selectedBackup() != m_shownBySearch)) {
    reloadSidebar();
    return;
  }
  // What somebody asked for is shown at once, the newest of it; what comes later and is newer takes
  // its place, unless somebody has selected something else.
  const auto isOfThisSearch = [&](BackupModel* backup) {
    return (!isFirst && backup == m_shownBySearch) ||
           std::ranges::find(added, backup) != added.end();
  };
  const std::vector<BackupModel*> all = m_bc->backups();
  m_shownBySearch = *std::ranges::find_if(all, isOfThisSearch);
  reloadSidebar(m_shownBySearch);
}

void SLAppDelegate::reloadSidebar(BackupModel* backup) {
  BackupModel* const before = selectedBackup();
  m_isReloading = true;
  m_ui->sourceList->reloadData();
  const int row = m_ui->sourceList->rowForItem(backup ? backup : before);
  if (row >= 0) {
    m_ui->sourceList->selectRowIndexesByExtendingSelection({row}, false);
  }
  m_isReloading = false;
  updateFolders();
  if (selectedBackup() != before) {
    selectedBackupDidChange();
  }
}

void SLAppDelegate::updateFolders() {
  if (m_bc->devices().empty()) {
    m_arrayController.setContent(nullptr);
    m_ui->browser->reloadData();
    m_ui->contentArea->setCurrentWidget(m_ui->emptyView);
    updateCentreText();
    updateCommands();
  } else if (m_ui->contentArea->currentWidget() == m_ui->emptyView) {
    m_ui->contentArea->setCurrentWidget(m_ui->textView);
  }
}

void SLAppDelegate::searchEnded(const std::string& folder, const BackupSearchResult& result,
                                bool stopped) {
  m_ui->searchBar->setVisible(m_search->isRunning());
  const bool wasAskedFor = m_askedFor.erase(folder) > 0;
  const bool hasEndedTooEarly = result.diskIsGone;
  if (wasAskedFor && !stopped && (result.backups == 0 || hasEndedTooEarly)) {
    tellOfSearch(folder, result);
  } else if (m_bc->devices().empty() && !m_search->isRunning() && !stopped) {
    sayThatThereAreNoBackups();
  }
}

void SLAppDelegate::tellOfSearch(const std::string& folder, const BackupSearchResult& result) {
  showAlert(m_window.get(),
            result.diskIsGone
                ? AlertText{QString("“%1” Can No Longer Be Read").arg(folderTitle(folder)),
                            "Its disk has gone or fails. Backups may be missing from the list."}
                : textOfNoBackups(folder, result));
}

void SLAppDelegate::sayThatThereAreNoBackups() {
  const AlertText text = {
      "No backup folders found",
      "Snaplift could not locate any valid iOS backups in your ~/Library/Application "
      "Support/MobileSync/Backups/ folder."};
  QMessageBox* alert = showAlertWithChoices(
      m_window.get(), text, {{"Choose Folder...", [this] { chooseFolderToOpen(); }}},
      [] { QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection); });
  offerConnectedDisks(*alert);
}

// The alert does not wait for disks, which may have to start turning.
void SLAppDelegate::offerConnectedDisks(QMessageBox& alert) {
  m_diskProbe = std::jthread([this, shown = QPointer(&alert)](const std::stop_token& stop) {
    const std::vector<DiskWithBackups> disks = connectedDisksWithBackups(stop);
    QMetaObject::invokeMethod(
        this,
        [this, shown, disks] {
          for (const DiskWithBackups& with : disks) {
            const QString count =
                with.backups == 1 ? QString("1 Backup") : QString("%1 Backups").arg(with.backups);
            if (shown) {
              addChoice(
                  *shown,
                  {QString("Open %1 on “%2”").arg(count, folderTitle(with.disk)), [this, with] {
                     std::ranges::for_each(with.roots,
                                           [this](const std::string& root) { openFolder(root); });
                   }});
            }
          }
        },
        Qt::QueuedConnection);
  });
}

void SLAppDelegate::closeFolderOfSelectedBackup() {
  if (const BackupModel* backup = selectedBackup()) {
    m_bc->closeFoldersOf(*backup);
    reloadSidebar();
  }
}

void SLAppDelegate::fillRecentFolders() {
  QMenu& menu = *m_ui->menuOpenRecent;
  menu.clear();
  for (const std::string& folder : m_state.recentFolders()) {
    QString text = QString::fromStdString(escapedForLog(folder));
    QAction* action = menu.addAction(text.replace('&', "&&"));
    connect(action, &QAction::triggered, this, [this, folder] { openFolder(folder); });
  }
  const bool hasFolders = !menu.isEmpty();
  menu.addSeparator();
  QAction* clear = menu.addAction("&Clear List");
  clear->setEnabled(hasFolders);
  connect(clear, &QAction::triggered, this, [this] { m_state.clearRecentFolders(); });
}

bool SLAppDelegate::takeDrop(QEvent& event) {
  if (event.type() != QEvent::DragEnter && event.type() != QEvent::DragMove &&
      event.type() != QEvent::Drop) {
    return false;
  }
  auto& drop = static_cast<QDropEvent&>(event);
  const std::vector<std::string> folders =
      drop.source() ? std::vector<std::string>() : droppedFolders(drop);
  if (folders.empty()) {
    return false;
  }
  drop.setDropAction(Qt::LinkAction & drop.possibleActions() ? Qt::LinkAction : Qt::CopyAction);
  drop.accept();
  if (event.type() == QEvent::Drop) {
    std::ranges::for_each(folders, [this](const std::string& folder) { openFolder(folder); });
  }
  return true;
}

void SLAppDelegate::restoreWindow() {
  const RememberedState::Window window = m_state.window();
  m_window->restoreGeometry(window.geometry);
  m_ui->splitView->restoreState(window.divider);
}

void SLAppDelegate::rememberState() {
  m_state.setWindow({m_window->saveGeometry(), m_ui->splitView->saveState()});
  std::vector<std::string> folders = m_bc ? m_bc->folders() : std::vector<std::string>();
  std::erase(folders, m_bc ? m_bc->basePath() : std::string());
  m_state.setOpenFolders(folders);
}

}  // namespace snaplift
