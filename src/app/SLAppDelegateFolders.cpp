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
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QStyle>
#include <QUrl>
#include <algorithm>
#include <filesystem>

#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "app/words/CoreText.h"
#include "foundation/Log.h"
#include "foundation/files/File.h"
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

AlertText textOfNoBackups(const std::string& folder, const FolderSearch::Outcome& outcome) {
  const QString title = folderTitle(folder);
  if (outcome.problem) {
    return {SLAppDelegate::tr("“%1” Cannot Be Opened").arg(title), coreText(*outcome.problem)};
  }
  QString text = SLAppDelegate::tr(
      "Snaplift looked into every folder below it. A backup is a folder that holds a file "
      "“Info.plist” beside a “Manifest.plist”, and many files with long names of digits and "
      "letters.");
  if (const std::size_t forbidden = outcome.result.forbidden; forbidden > 0) {
    text += "\n\n" + SLAppDelegate::tr("There is no permission to read %n of its folders.", nullptr,
                                       static_cast<int>(forbidden));
  }
  return {SLAppDelegate::tr("No Backups Found in “%1”").arg(title), text};
}

}  // namespace

void SLAppDelegate::connectFolders() {
  m_search = std::make_unique<FolderSearch>(FolderSearch::Events{
      .found = [this](const FolderSearch::Search& search,
                      auto backups) { addBackups(search, std::move(backups)); },
      .looking = [this](const std::string& place, bool isSilent) { showSearch(place, isSilent); },
      .ended = [this](const FolderSearch::Search& search,
                      const FolderSearch::Outcome& outcome) { searchEnded(search, outcome); }});
  m_window->setAcceptDrops(true);
  connect(m_ui->actionOpenFolder, &QAction::triggered, this, [this] { chooseFolderToOpen(); });
  connect(m_ui->chooseFolderButton, &QPushButton::clicked, this, [this] { chooseFolderToOpen(); });
  connect(m_ui->actionCloseFolder, &QAction::triggered, this,
          [this] { closeFolderOfSelectedBackup(); });
  connect(m_ui->stopSearch, &QPushButton::clicked, this, [this] {
    m_search->stop();
    m_ui->searchBar->hide();  // its disk may not answer for long
  });
  connect(m_ui->menuOpenRecent, &QMenu::aboutToShow, this, [this] { fillRecentFolders(); });
}

void SLAppDelegate::chooseFolderToOpen() {
  chooseFolder(m_window.get(), tr("Open"),
               [this](const std::string& folder) { openFolder(folder); });
}

void SLAppDelegate::openFolder(const std::string& path) {
  searchFolder(path, true);
}

void SLAppDelegate::searchFolder(const std::string& path, bool wasAskedFor) {
  std::string folder = path;
  if (wasAskedFor) {
    // Absolute, for the day on which it is opened again from elsewhere. Nobody looks at it before
    // the search does, for its disk may not answer.
    std::error_code ignored;
    folder = std::filesystem::absolute(path, ignored).lexically_normal().string();
  }
  m_search->search({folder, wasAskedFor});
  showSearch(folder, false);
}

void SLAppDelegate::showSearch(const std::string& place, bool isSilent) {
  m_ui->searchText->setText(
      (isSilent ? tr("Still waiting for an answer from %1") : tr("Searching for backups in %1"))
          .arg(QString::fromStdString(escapedForLog(place))));
  m_ui->searchBar->show();
}

void SLAppDelegate::addBackups(const FolderSearch::Search& search,
                               std::vector<std::unique_ptr<BackupModel>> backups) {
  const auto& [folder, wasAskedFor] = search;
  const bool isFirst = std::ranges::find(m_bc->folders(), folder) == m_bc->folders().end();
  const std::vector<BackupModel*> added = m_bc->addBackups(folder, std::move(backups));
  if (added.empty()) {
    return;
  }
  if (isFirst && wasAskedFor) {
    m_state.addRecentFolder(folder);
  }
  // What somebody asked for is shown at once, the newest of it; what comes later and is newer takes
  // its place, unless somebody has selected something else. So it is with what is remembered where
  // nothing else is shown.
  const BackupModel* const selected = selectedBackup();
  const bool continues = selected == m_shownBySearch.backup &&
                         wasAskedFor == m_shownBySearch.wasAskedFor && !(isFirst && wasAskedFor);
  if (selected && !continues && !(isFirst && wasAskedFor)) {
    reloadSidebar();
    return;
  }
  const auto isOfThisSearch = [&](BackupModel* backup) {
    return (continues && backup == selected) || std::ranges::find(added, backup) != added.end();
  };
  const std::vector<BackupModel*> all = m_bc->backups();
  m_shownBySearch = {*std::ranges::find_if(all, isOfThisSearch), wasAskedFor};
  reloadSidebar(m_shownBySearch.backup);
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
    m_finder->contentDidChange();
  } else if (m_ui->contentArea->currentWidget() == m_ui->emptyView) {
    m_ui->contentArea->setCurrentWidget(m_ui->textView);
  }
}

void SLAppDelegate::searchEnded(const FolderSearch::Search& search,
                                const FolderSearch::Outcome& outcome) {
  m_ui->searchBar->setVisible(m_search->isRunning());
  const auto& [folder, wasAskedFor] = search;
  const BackupSearchResult& result = outcome.result;
  if (result.diskIsGone || (wasAskedFor && result.unreadable > 0 && !outcome.problem)) {
    tellOfLostFolder(folder);
  } else if (wasAskedFor && !outcome.wasStopped && result.backups == 0) {
    showAlert(m_window.get(), textOfNoBackups(folder, outcome));
  } else if (wasAskedFor && result.forbidden > 0) {
    m_ui->searchNotice->tell(
        tr("Backups may be missing: there is no permission to read %n of the folders in “%1”.",
           nullptr, static_cast<int>(result.forbidden))
            .arg(folderTitle(folder)));
  } else if (m_bc->devices().empty() && !m_search->isRunning() && !outcome.wasStopped) {
    sayThatThereAreNoBackups();
  }
}

void SLAppDelegate::closeFolderOfSelectedBackup() {
  if (const BackupModel* backup = selectedBackup()) {
    closeFolders(m_bc->foldersOf(*backup));
  }
}

void SLAppDelegate::closeFolders(const std::vector<std::string>& folders) {
  std::ranges::for_each(folders, [this](const std::string& folder) { m_bc->closeFolder(folder); });
  reloadSidebar();
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
  QAction* clear = menu.addAction(tr("&Clear List"));
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
  // Neither the size of the first start nor one that is remembered need fit on this screen, where
  // the frame wants room as well.
  const int frame = m_window->style()->pixelMetric(QStyle::PM_TitleBarHeight);
  const QSize room = m_window->screen()->availableSize() - QSize(frame, 2 * frame);
  m_window->resize(m_window->size().boundedTo(room));
  m_ui->splitView->restoreState(window.divider);
}

void SLAppDelegate::rememberState() {
  m_state.setWindow({m_window->saveGeometry(), m_ui->splitView->saveState()});
  std::vector<std::string> folders = m_bc ? m_bc->folders() : std::vector<std::string>();
  std::erase(folders, m_bc ? m_bc->basePath() : std::string());
  for (const FolderSearch::Search& search : m_search->searches()) {
    if (std::ranges::find(folders, search.folder) == folders.end()) {
      folders.push_back(search.folder);  // nobody knows yet what it holds
    }
  }
  m_state.setOpenFolders(folders);
}

}  // namespace snaplift
