// Start-up, the commands, and the window as a whole.

#include "app/SLAppDelegate.h"

#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>

#include "app/ApplicationImages.h"
#include "app/StatusText.h"
#include "app/details/PhotoDetails.h"
#include "app/words/CoreText.h"
#include "ui_MainWindow.h"
#include "widgets/desktop/MainThread.h"
#include "widgets/desktop/PlainText.h"

namespace snaplift {
namespace {

// The message pane fills the window with few words.
constexpr double messageScale = 1.5;

}  // namespace

SLAppDelegate::SLAppDelegate()
    : m_ui(std::make_unique<Ui::MainWindow>()), m_window(std::make_unique<QMainWindow>()) {
  m_ui->setupUi(m_window.get());
  m_window->setWindowIcon(applicationIcon());
  m_window->installEventFilter(this);
  awakeFromNib();
  connectCommands();
  connectFinder();
  connectFolders();
  connectExport();
  connectDisks();
}

SLAppDelegate::~SLAppDelegate() {
  mainThread::beginQuitting();
  m_startedLoading.remove();
  m_finishedLoading.remove();
  m_search.reset();
  m_diskProbe = {};
  m_tidying = {};
  m_exporter.reset();
  m_details.reset();
  m_zoomAnimation.reset();
  m_finder.reset();
  m_window.reset();  // its workers suspect disks
  m_disks.reset();
}

void SLAppDelegate::applicationWillTerminate() {
  m_exporter->stopAndWait();
  if (m_window->isVisible()) {
    rememberState();
  }
}

void SLAppDelegate::awakeFromNib() {
  connectZoom();
  connectDetails();
  m_ui->sourceList->setAllowsEmptySelection(false);  // the newest backup is there at once
  m_ui->browser->setDataSource(&m_arrayController);
  m_ui->browser->setDelegate(this);
  connect(m_ui->browser, &ImageBrowserView::selectionIndexesChanged, this, [this] {
    updateCentreText();
    updateCommands();
    emit hasSelectionChanged(hasSelection());
  });
  QFont message = m_ui->text->font();
  message.setPointSizeF(message.pointSizeF() * messageScale);
  m_ui->text->setFont(message);
  m_ui->smallPictureMark->setPixmap(imageNamed("Small-Picture-Mark.png"));
  m_ui->largePictureMark->setPixmap(imageNamed("Large-Picture-Mark.png"));
  m_ui->splitView->setSizes({240, 800, PhotoDetails::usualWidth});
  m_ui->splitView->setStretchFactor(1, 1);
}

void SLAppDelegate::connectCommands() {
  const auto command = [this](QAction* action, auto slot) {
    connect(action, &QAction::triggered, this, slot);
  };
  ImageBrowserView* browser = m_ui->browser;
  command(m_ui->actionExportSelected, [this] { exportSelectedPhotosFromSelectedBackup(); });
  command(m_ui->actionExportAll, [this] { exportAllPhotosFromSelectedBackup(); });
  command(m_ui->actionExportEverything, [this] { exportEverything(); });
  command(m_ui->actionReveal, [this] { revealSelectedInFinder(); });
  command(m_ui->actionClose, [this] { m_window->close(); });
  command(m_ui->actionQuit, [this] { m_window->close(); });
  command(m_ui->actionCopy, [this] { copySelectedPhotos(); });
  command(m_ui->actionSelectAll, [browser] { browser->selectAll(); });
  command(m_ui->actionDeselect, [browser] { browser->deselectAll(); });
  command(m_ui->actionInvertSelection, [browser] { browser->invertSelection(); });
  command(m_ui->actionZoomIn, [browser] { browser->zoomIn(); });
  command(m_ui->actionZoomOut, [browser] { browser->zoomOut(); });
  command(m_ui->actionStartSize, [browser] { browser->zoomToInitialSize(); });
  command(m_ui->actionPreview, [browser] { browser->setPreviewOpen(!browser->isPreviewOpen()); });
  connect(m_ui->actionOtherMedia, &QAction::toggled, this, &SLAppDelegate::showOtherMedia);
  command(m_ui->actionAbout, [this] { showAbout(); });
  connect(m_ui->exportButton, &QPushButton::clicked, this, [this] {
    (hasSelection() ? m_ui->actionExportSelected : m_ui->actionExportAll)->trigger();
  });
}

void SLAppDelegate::applicationDidFinishLaunching(const std::string& backupRoot,
                                                  const std::vector<std::string>& folders,
                                                  bool keepsState) {
  m_state = RememberedState(keepsState);
  m_ui->actionOtherMedia->setChecked(m_state.showsOtherMedia());
  m_finder->setWishes(m_state.look().wishes);
  m_finder->setShowsDates(m_state.look().showsDates);
  m_ui->actionGetInfo->setChecked(m_state.showsInfo());
  m_bc = std::make_unique<BackupController>(backupRoot);
  // Before the sidebar can select a backup and start its load: no finish may be missed.
  registerForLoading();
  m_ui->sourceList->setDelegate(this);
  m_ui->sourceList->setDataSource(this);
  restoreWindow();
  tidyFolderOfLastExport();
  showExportSettings(m_state.exportSettings());
  for (const std::string& folder : folders) {
    searchFolder(folder, true);
  }
  for (const std::string& folder : m_state.openFolders()) {
    searchFolder(folder, false);
  }
  updateCommands();
  updateFolders();
  m_window->show();
  m_ui->sourceList->setFocus();
  if (m_bc->devices().empty() && !m_search->isRunning()) {
    sayThatThereAreNoBackups();
  }
}

void SLAppDelegate::registerForLoading() {
  NotificationCenter& center = NotificationCenter::defaultCenter();
  m_startedLoading = center.addObserver(
      std::string(startedLoadingNotification), nullptr,
      [this](const Notification& n) { didStartLoading(static_cast<BackupModel*>(n.object)); });
  m_finishedLoading = center.addObserver(
      std::string(finishedLoadingNotification), nullptr,
      [this](const Notification& n) { finishedLoading(static_cast<BackupModel*>(n.object)); });
}

void SLAppDelegate::showAbout() {
  auto* box = new QMessageBox(QMessageBox::NoIcon, tr("About Snaplift"),
                              QString("<h3>Snaplift " SNAPLIFT_VERSION "</h3><p>%1</p><p>%2</p>")
                                  .arg(tr("Gets photos back out of the backups of old handsets."),
                                       tr("Backups are only read, never changed.")),
                              QMessageBox::Ok, m_window.get());
  box->setIconPixmap(m_window->windowIcon().pixmap(64));
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

BackupModel* SLAppDelegate::selectedBackup() const {
  const RowIndexes rows = m_ui->sourceList->selectedRowIndexes();
  return rows.empty() ? nullptr : m_ui->sourceList->itemAtRow(*rows.begin()).as<BackupModel>();
}

void SLAppDelegate::updateCommands() {
  BackupModel* backup = selectedBackup();
  const bool showsPhotos = backup && backup == m_arrayController.content() &&
                           m_ui->contentArea->currentWidget() == m_ui->browser;
  const bool showsSelection = showsPhotos && hasSelection();
  m_ui->actionExportSelected->setEnabled(showsSelection);
  // Asked for the photos of an encrypted backup, the command says why there are none.
  const bool hidesPhotos =
      backup && backup->contentReady() && backup->encrypted() && !backup->imageItems().empty();
  m_ui->actionExportAll->setEnabled(showsPhotos || hidesPhotos);
  m_ui->actionExportEverything->setEnabled(m_bc && !m_bc->devices().empty() &&
                                           !m_exporter->isCollecting());
  sayWhatIsExported();
  m_ui->actionReveal->setEnabled(backup);
  m_ui->actionCloseFolder->setEnabled(backup);
  m_ui->actionCopy->setEnabled(showsSelection && !m_exporter->isExporting());
  m_ui->actionDeselect->setEnabled(showsSelection);
  for (QAction* action : {m_ui->actionSelectAll, m_ui->actionInvertSelection, m_ui->actionZoomIn,
                          m_ui->actionZoomOut, m_ui->actionStartSize, m_ui->actionPreview}) {
    action->setEnabled(showsPhotos);
  }
  m_ui->actionFind->setEnabled(showsPhotos ||
                               m_ui->contentArea->currentWidget() == m_ui->noMatchView);
}

bool SLAppDelegate::eventFilter(QObject* object, QEvent* event) {
  if (object == m_window.get()) {
    if (event->type() == QEvent::Close) {
      if (m_exporter->isExporting()) {
        event->ignore();
        m_exporter->askWhetherToStop([this] { m_window->close(); });
        return true;
      }
      rememberState();
    }
    if (takeDrop(*event)) {
      return true;
    }
  }
  return QObject::eventFilter(object, event);
}

}  // namespace snaplift
