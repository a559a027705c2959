#pragma once

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <atomic>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "app/FolderSearch.h"
#include "app/RememberedState.h"
#include "app/TemporaryPhotos.h"
#include "app/details/SelectionDetails.h"
#include "app/disks/DiskWatch.h"
#include "app/export/PhotoExporter.h"
#include "app/photos/PhotoFinder.h"
#include "backups/BackupController.h"
#include "foundation/NotificationCenter.h"
#include "views/browser/ORBAdjustingValueAnimation.h"
#include "views/browser/ORBImageBrowserView.h"
#include "views/sourcelist/ORBSourceList.h"

class QMainWindow;
class QMessageBox;

namespace Ui {
class MainWindow;
}

namespace snaplift {

// The application's one controller. It owns the window, the backup library and the exports; it
// feeds the sidebar with devices and backups, loads the backup that the user selects, keeps the
// main area in step with it, and exports photos. Its parts stand in files of their own: start-up,
// the tree of backups, the folders that are open, their disks, the state of the browser, the
// finding of photos in it, what is known of them, the export.
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

  // Start-up: scans the backup root, fills the sidebar and shows the window; then searches
  // `folders` and, where the state is kept from one run to the next, those that were open at the
  // end of the last. Without any backup it says so, and quits when the user does not choose a
  // folder.
  void applicationDidFinishLaunching(const std::string& backupRoot,
                                     const std::vector<std::string>& folders = {},
                                     bool keepsState = false);

  // The end, however it came: no more photos are begun, those in hand are finished, and the state
  // is kept. What is left to do after that is to let go of everything.
  void applicationWillTerminate();

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
  void exportEverything();
  // All photos of one device.
  void exportDevice(DeviceModel& device);
  void revealSelectedInFinder();
  void copySelectedPhotos();
  void chooseFolderToOpen();
  // Searches a folder, or the folder around a file of a backup, and adds its backups to the list.
  void openFolder(const std::string& path);
  // Takes the folders that lead to the selected backup out of the list.
  void closeFolderOfSelectedBackup();

  // The sidebar's tree: devices as groups, their backups below.
  std::size_t sourceListNumberOfChildrenOfItem(PXSourceList& list, OutlineItem item) override;
  OutlineItem sourceListChildOfItem(PXSourceList& list, std::size_t index,
                                    OutlineItem item) override;
  QVariant sourceListObjectValueForItem(PXSourceList& list, OutlineItem item) override;
  bool sourceListIsItemExpandable(PXSourceList& list, OutlineItem item) override;
  std::optional<bool> sourceListItemHasIcon(PXSourceList& list, OutlineItem item) override;
  std::optional<QPixmap> sourceListIconForItem(PXSourceList& list, OutlineItem item) override;
  std::optional<bool> sourceListItemHasRightSideIcon(PXSourceList& list, OutlineItem item) override;
  std::optional<QString> sourceListDetailsForItem(PXSourceList& list, OutlineItem item) override;
  std::optional<bool> sourceListItemIsProcessing(PXSourceList& list, OutlineItem item) override;
  std::optional<bool> sourceListShouldEditItem(PXSourceList& list, OutlineItem item) override;
  std::optional<bool> sourceListIsGroupAlwaysExpanded(PXSourceList& list,
                                                      OutlineItem group) override;
  std::optional<QMenu*> sourceListMenuForEventItem(PXSourceList& list, QMouseEvent& event,
                                                   OutlineItem item) override;
  void sourceListSelectionDidChange(const Notification& notification) override;

  // The photo browser's questions.
  void imageBrowserCellWasDoubleClickedAtIndex(ImageBrowserView& browser, int index) override;
  void imageBrowserOpenItemAtIndex(ImageBrowserView& browser, int index) override;
  void imageBrowserContextMenuAtPoint(ImageBrowserView& browser, QPoint globalPoint) override;
  std::optional<std::vector<std::string>> imageBrowserExportItemsToDestination(
      ORBImageBrowserView& browser, const std::vector<ImageBrowserItemPointer>& items,
      const std::string& destination) override;
  std::shared_ptr<PromisedFileList> imageBrowserFilesOfItems(
      ORBImageBrowserView& browser, const std::vector<ImageBrowserItemPointer>& items) override;
  bool imageBrowserTakesTyping(ImageBrowserView& browser, const QString& text) override;
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
  void showAbout();
  BackupModel* selectedBackup() const;
  void selectedBackupDidChange();
  void updateCommands();
  bool eventFilter(QObject* object, QEvent* event) override;

  // Folders.
  void connectFolders();
  void searchFolder(const std::string& path, bool wasAskedFor);
  void addBackups(const FolderSearch::Search& search,
                  std::vector<std::unique_ptr<BackupModel>> backups);
  void searchEnded(const FolderSearch::Search& search, const FolderSearch::Outcome& outcome);
  void showSearch(const std::string& place, bool isSilent);
  // Asks for the whole sidebar anew. The selected backup stays it, or `backup` becomes it.
  void reloadSidebar(BackupModel* backup = nullptr);
  void updateFolders();
  void fillRecentFolders();
  void closeFolders(const std::vector<std::string>& folders);
  bool takeDrop(QEvent& event);
  void restoreWindow();
  void rememberState();

  // Disks.
  void connectDisks();
  void suspectIfItLoadsLong(const std::string& path);
  void backupWasLookedAt(const std::string& path, bool canBeRead);
  void isBackAgain(const BackupModel& backup);
  void tellOfLostFolder(const std::string& folder);
  // Of the folder of this backup, or, where there is none, no more.
  void tellOfSilentDisk(const std::string& path);
  void sayThatThereAreNoBackups();
  void offerConnectedDisks(QMessageBox& alert);

  // State of the browser.
  void connectZoom();
  void didStartLoading(BackupModel* backup);
  void finishedLoading(BackupModel* backup);
  void showContentOf(BackupModel* backup);
  void didShowContentOf(BackupModel* backup);
  void sayThatItIsEncrypted(std::function<void()> dismissed = {});
  void tellOfDamage();
  void tellOfOtherMedia(BackupModel& backup);
  void showOtherMedia(bool shows);
  void showMessage(const QString& message);
  void connectDetails();
  SelectionDetails::Shown shownPhotos();
  QMenu* menuOfDevice(DeviceModel& device);
  void updateCentreText();
  void updateMenuItem();
  // Makes `item` the command that exports the backup, or says that there is nothing to export.
  void offerExport(QAction& item, BackupModel& backup);

  // Finding.
  void connectFinder();
  // The photos, or that none of them is what is looked for.
  void showPhotos();
  void tellWhatIsShown();
  void sayWhatIsExported();
  QString textOfExportAll() const;

  // Export.
  using PhotosToExport = std::vector<ImageItem*>;
  void connectExport();
  void chooseFolderAndExport(const std::function<PhotosToExport()>& photos);
  void chooseExportFolder(const std::function<void(const std::string& folder)>& chosen);
  std::vector<std::string> exportPhotos(const PhotosToExport& photos,
                                        const std::string& destination);
  // Of that device alone, or of all where it is null.
  void exportEverythingInto(const std::string& destination, const DeviceModel* only = nullptr);
  // Says why not; one that is accepted is remembered.
  bool acceptsExportInto(const std::string& destination);
  std::vector<std::string> backupFolders() const;
  RememberedState::Export exportSettings() const;
  void showExportSettings(const RememberedState::Export& settings);
  ExportOptions exportOptions() const;
  void updateExportProgress();
  void tidyFolderOfLastExport();
  TemporaryPhotos::Failed tellingFailedCopy(std::size_t photos);

  std::unique_ptr<BackupController> m_bc;
  RememberedState m_state{false};
  struct {
    BackupModel* backup = nullptr;
    bool wasAskedFor = false;
  } m_shownBySearch;
  bool m_isReloading = false;
  std::unique_ptr<Ui::MainWindow> m_ui;
  BackupPhotos m_arrayController;
  std::unique_ptr<PhotoFinder> m_finder;
  std::unique_ptr<QMainWindow> m_window;

  float m_zoomLevel = startZoom;
  std::unique_ptr<ORBAdjustingValueAnimation> m_zoomAnimation;
  std::unique_ptr<QMenu> m_contextMenu;  // of the sidebar
  std::unique_ptr<QMenu> m_photoMenu;
  // Paths of backups: whose disk has gone; that cannot be read whole, whether somebody was told of
  // it or waits to be.
  std::set<std::string> m_lostBackups, m_toldOfDamage, m_damagedBackups;
  QPointer<QAction> m_pendingMenuItem;  // "Loading...", waiting for its backup; of m_contextMenu

  std::unique_ptr<SelectionDetails> m_details;
  std::unique_ptr<PhotoExporter> m_exporter;
  std::string m_exportFolder;  // of the last export, also of an earlier run
  std::shared_ptr<TemporaryPhotos> m_openedFilm;
  NotificationCenter::Token m_startedLoading;
  NotificationCenter::Token m_finishedLoading;
  std::unique_ptr<FolderSearch> m_search;
  std::unique_ptr<DiskWatch> m_disks;
  std::jthread m_diskProbe;
  std::jthread m_tidying;
};

}  // namespace snaplift
