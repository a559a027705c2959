#pragma once

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <atomic>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "app/BackupPhotos.h"
#include "app/ExportBatch.h"
#include "foundation/NotificationCenter.h"
#include "foundation/OperationQueue.h"
#include "library/BackupController.h"
#include "ui/browser/ORBAdjustingValueAnimation.h"
#include "ui/browser/ORBImageBrowserView.h"
#include "ui/sourcelist/ORBSourceList.h"

class QMainWindow;

namespace Ui {
class MainWindow;
}

namespace snaplift {

// The application's one controller. It owns the window, the backup library and the export queue; it
// feeds the sidebar with devices and backups, loads the backup that the user selects, keeps the
// main area in step with it, and exports photos. Its three parts stand in three files: start-up and
// the tree of backups, the state of the browser, the export.
//
// Everything runs on the user interface's thread, except the two handlers of loading notifications,
// which come on a backup's loading thread and hand their work over. The destructor gives up every
// such hand-over, stops exporting after the photos in hand, and lets go of the views before the
// backups that they show.
//
// The selected item is the backup in the lowest selected row of the sidebar, or none; whatever acts
// on it does nothing where there is none.
class SLAppDelegate : public QObject,
                      public ORBSourceListDataSource,
                      public PXSourceListDelegate,
                      public ORBImageBrowserViewDelegate {
  Q_OBJECT
  Q_PROPERTY(float zoomLevel READ zoomLevel WRITE setZoomLevel NOTIFY zoomLevelChanged)
  Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY hasSelectionChanged)

public:
  static constexpr float startZoom = 0.3F;

  // Makes the window from the interface file and connects it; shows nothing yet.
  SLAppDelegate();
  ~SLAppDelegate() override;

  // Start-up: scans the backup root, fills the sidebar and shows the window. Without backups it
  // says so, and quits when the user has seen it.
  void applicationDidFinishLaunching(const std::string& backupRoot);

  QMainWindow* window() const { return m_window.get(); }

  // The size of the pictures, which slider and browser follow: 0.1 to maxZoom().
  float zoomLevel() const { return m_zoomLevel; }
  void setZoomLevel(float zoomLevel);
  double maxZoom() const override { return 1.0; }
  // Whether a photo is selected in the browser.
  bool hasSelection() const;

  // The commands.
  void exportSelectedPhotosFromSelectedBackup();
  void exportAllPhotosFromSelectedBackup();
  void revealSelectedInFinder();
  void copySelectedPhotos();

  // The sidebar's tree: devices as groups, their backups below.
  std::size_t sourceListNumberOfChildrenOfItem(PXSourceList& list, OutlineItem item) override;
  OutlineItem sourceListChildOfItem(PXSourceList& list, std::size_t index,
                                    OutlineItem item) override;
  QVariant sourceListObjectValueForItem(PXSourceList& list, OutlineItem item) override;
  bool sourceListIsItemExpandable(PXSourceList& list, OutlineItem item) override;
  std::optional<bool> sourceListItemHasIcon(PXSourceList& list, OutlineItem item) override;
  std::optional<QPixmap> sourceListIconForItem(PXSourceList& list, OutlineItem item) override;
  std::optional<bool> sourceListItemHasRightSideIcon(PXSourceList& list, OutlineItem item) override;
  std::optional<bool> sourceListItemIsProcessing(PXSourceList& list, OutlineItem item) override;
  std::optional<bool> sourceListShouldEditItem(PXSourceList& list, OutlineItem item) override;
  std::optional<bool> sourceListIsGroupAlwaysExpanded(PXSourceList& list,
                                                      OutlineItem group) override;
  std::optional<QMenu*> sourceListMenuForEventItem(PXSourceList& list, QMouseEvent& event,
                                                   OutlineItem item) override;
  void sourceListSelectionDidChange(const Notification& notification) override;

  // The photo browser's questions.
  void imageBrowserCellWasDoubleClickedAtIndex(ImageBrowserView& browser, int index) override;
  std::optional<std::vector<std::string>> imageBrowserExportItemsToDestination(
      ORBImageBrowserView& browser, const std::vector<ImageBrowserItemPointer>& items,
      const std::string& destination) override;
  // Puts the photos on the clipboard and says how many: none while photos are being exported.
  int imageBrowserWriteItemsAtIndexesToPasteboard(ImageBrowserView& browser,
                                                  const std::vector<int>& indexes);

signals:
  void zoomLevelChanged(float zoomLevel);
  void hasSelectionChanged(bool hasSelection);

private:
  // Start-up and tree.
  void awakeFromNib();
  void connectCommands();
  void registerForLoading();
  void sayThatThereAreNoBackups();
  void showAbout();
  BackupModel* selectedBackup() const;
  void updateCommands();
  bool eventFilter(QObject* object, QEvent* event) override;

  // State of the browser.
  void connectZoom();
  void didStartLoading();
  void finishedLoading(BackupModel* backup);
  void showContentOf(BackupModel* backup);
  void didShowContentOf(BackupModel* backup);
  void tellOfDamage(const BackupModel& backup);
  void showMessage(const QString& message);
  void updateCentreText();
  void updateMenuItem();
  // Makes `item` the command that exports the backup, or says that there is nothing to export.
  void offerExport(QAction& item, BackupModel& backup);

  // Export.
  using PhotosToExport = std::vector<ImageItem*>;
  void chooseFolderAndExport(const std::function<PhotosToExport(BackupModel& backup)>& photos);
  PhotosToExport photosAtIndexes(BackupModel& backup, const std::vector<int>& indexes) const;
  std::vector<std::string> exportPhotos(const PhotosToExport& photos,
                                        const std::string& destination);
  bool isExporting() const;
  void exportOperationsDidChange();
  void updateExportProgress();
  void tellOfFailures(const ExportFailures& failures);
  void askWhetherToStopExporting();

  std::unique_ptr<BackupController> m_bc;
  std::unique_ptr<Ui::MainWindow> m_ui;
  BackupPhotos m_arrayController;
  std::unique_ptr<QMainWindow> m_window;

  float m_zoomLevel = startZoom;
  std::unique_ptr<ORBAdjustingValueAnimation> m_zoomAnimation;
  std::unique_ptr<QMenu> m_contextMenu;
  std::set<std::string> m_toldOfDamage;  // paths of backups
  QPointer<QAction> m_pendingMenuItem;   // "Loading...", waiting for its backup; of m_contextMenu

  std::atomic<bool> m_exportUpdateIsPosted = false;
  std::unique_ptr<OperationQueue> m_exportOperationQueue;
  NotificationCenter::Token m_startedLoading;
  NotificationCenter::Token m_finishedLoading;
};

}  // namespace snaplift
