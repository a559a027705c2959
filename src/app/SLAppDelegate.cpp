// Start-up, and the tree of devices and backups in the sidebar.

#include "app/SLAppDelegate.h"

#include <QApplication>
#include <QEvent>
#include <QIcon>
#include <QMainWindow>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPixmapCache>
#include <QPushButton>
#include <algorithm>
#include <cmath>

#include "app/StatusText.h"
#include "app/details/PhotoDetails.h"
#include "app/words/CoreText.h"
#include "ui_MainWindow.h"
#include "widgets/desktop/MainThread.h"
#include "widgets/desktop/PlainText.h"

// The pictures lie in a static library, from which a linker takes only what somebody calls. The
// call has to be made outside of every namespace.
static void loadResources() {
  Q_INIT_RESOURCE(snaplift);
}

namespace snaplift {
namespace {

// The message pane fills the window with few words.
constexpr double messageScale = 1.5;

// The application's resource image of that name, a PNG file, in the resolution of the finest
// screen: from the files "@2x" and "@3x" beside its own. Every row of the sidebar asks at every
// painting; and a reader that is not told the format loads the decoders of all others at the start.
QPixmap imageNamed(std::string_view name) {
  const int scale = std::clamp(static_cast<int>(std::ceil(qApp->devicePixelRatio())), 1, 3);
  QString file = ":/icons/" + QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  if (scale > 1) {
    file.insert(file.lastIndexOf('.'), QString("@%1x").arg(scale));
  }
  QPixmap image;
  if (!QPixmapCache::find(file, &image)) {
    image = QPixmap(file, "png");
    image.setDevicePixelRatio(scale);
    QPixmapCache::insert(file, image);
  }
  return image;
}

QIcon applicationIcon() {
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 128}) {
    // Not addFile(), which loads every decoder that there is to learn the file's format.
    icon.addPixmap(QPixmap(QString(":/icons/app.snaplift.Snaplift-%1.png").arg(size), "png"));
  }
  return icon;
}

}  // namespace

SLAppDelegate::SLAppDelegate()
    : m_ui(std::make_unique<Ui::MainWindow>()), m_window(std::make_unique<QMainWindow>()) {
  loadResources();
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

std::size_t SLAppDelegate::sourceListNumberOfChildrenOfItem(PXSourceList&, OutlineItem item) {
  if (!item) {
    return m_bc->devices().size();
  }
  auto* device = item.as<DeviceModel>();
  return device ? device->backups().size() : 0;
}

OutlineItem SLAppDelegate::sourceListChildOfItem(PXSourceList&, std::size_t index,
                                                 OutlineItem item) {
  if (auto* device = item.as<DeviceModel>()) {
    return device->backups()[index].get();
  }
  return m_bc->devices()[index].get();
}

QVariant SLAppDelegate::sourceListObjectValueForItem(PXSourceList&, OutlineItem item) {
  if (auto* device = item.as<DeviceModel>()) {
    return plainText::shortened(deviceTitle(*device)).toUpper();
  }
  auto* backup = item.as<BackupModel>();
  if (!backup) {
    return QString();
  }
  DeviceModel* device = m_bc->deviceOf(*backup);
  return plainText::shortened(device ? device->titleOfBackup(*backup) : backup->name());
}

bool SLAppDelegate::sourceListIsItemExpandable(PXSourceList&, OutlineItem item) {
  return item.as<DeviceModel>() != nullptr;
}

std::optional<bool> SLAppDelegate::sourceListItemHasIcon(PXSourceList&, OutlineItem item) {
  return item.as<BackupModel>() != nullptr;
}

std::optional<QPixmap> SLAppDelegate::sourceListIconForItem(PXSourceList&, OutlineItem item) {
  auto* backup = item.as<BackupModel>();
  return backup ? imageNamed(backup->icon()) : QPixmap();
}

std::optional<bool> SLAppDelegate::sourceListItemHasRightSideIcon(PXSourceList& list,
                                                                  OutlineItem item) {
  return sourceListItemIsProcessing(list, item);
}

std::optional<QString> SLAppDelegate::sourceListDetailsForItem(PXSourceList&, OutlineItem item) {
  auto* backup = item.as<BackupModel>();
  return backup ? std::optional(backupDescription(*backup)) : std::nullopt;
}

std::optional<bool> SLAppDelegate::sourceListItemIsProcessing(PXSourceList&, OutlineItem item) {
  auto* backup = item.as<BackupModel>();
  return backup && backup->processing();
}

std::optional<bool> SLAppDelegate::sourceListShouldEditItem(PXSourceList&, OutlineItem) {
  return false;
}

std::optional<bool> SLAppDelegate::sourceListIsGroupAlwaysExpanded(PXSourceList&, OutlineItem) {
  return true;
}

std::optional<QMenu*> SLAppDelegate::sourceListMenuForEventItem(PXSourceList& list,
                                                                QMouseEvent& event,
                                                                OutlineItem item) {
  const bool asksForMenu =
      event.button() == Qt::RightButton ||
      (event.button() == Qt::LeftButton && event.modifiers().testFlag(Qt::ControlModifier));
  auto* backup = item.as<BackupModel>();
  if (!backup || !asksForMenu) {
    return nullptr;
  }
  list.selectRowIndexesByExtendingSelection({list.rowForItem(item)}, false);
  m_contextMenu = std::make_unique<QMenu>();
  QAction* first = m_contextMenu->addAction(tr("Loading..."));
  if (!backup->contentReady()) {
    first->setEnabled(false);
    m_pendingMenuItem = first;
  } else {
    offerExport(*first, *backup);
  }
  m_contextMenu->addSeparator();
  connect(m_contextMenu->addAction(tr("Reveal In Finder")), &QAction::triggered, this,
          [this] { revealSelectedInFinder(); });
  return m_contextMenu.get();
}

void SLAppDelegate::sourceListSelectionDidChange(const Notification&) {
  if (!m_isReloading) {
    selectedBackupDidChange();
  }
}

void SLAppDelegate::selectedBackupDidChange() {
  BackupModel* backup = selectedBackup();
  m_pendingMenuItem = nullptr;
  updateCommands();
  if (backup) {
    backup->prepareContent();
    m_ui->browser->prepareThumbnails();
    m_ui->sourceList->reloadItem(backup);
  }
}

}  // namespace snaplift
