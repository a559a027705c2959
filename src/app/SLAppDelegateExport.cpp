// Export: the commands, the queue and its progress, the pasteboard, the file manager.

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <optional>
#include <utility>

#include "app/PhotoPasteboard.h"
#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "app/export/ExportProgressBar.h"
#include "app/export/ExportText.h"
#include "export/ExportDestination.h"
#include "foundation/Log.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"
#include "ui_MainWindow.h"
#include "widgets/desktop/ActivityIndicator.h"
#include "widgets/desktop/Alert.h"
#include "widgets/desktop/FolderChooser.h"
#include "widgets/desktop/NoticeBar.h"
#include "widgets/desktop/TableSheet.h"
#include "widgets/desktop/Workspace.h"

namespace snaplift {
namespace {

// Absent where the backup does not know the size of each.
std::optional<std::uint64_t> bytesOf(const std::vector<PhotoToExport>& photos) {
  std::uint64_t bytes = 0;
  for (const PhotoToExport& photo : photos) {
    const auto size = photo.photo->info().size;
    if (!size) {
      return std::nullopt;
    }
    bytes += *size;
  }
  return bytes;
}

std::vector<ImageItem*> photosOfItems(const std::vector<ImageBrowserItemPointer>& items) {
  std::vector<ImageItem*> photos;
  photos.reserve(items.size());
  for (const ImageBrowserItemPointer& item : items) {
    photos.push_back(&static_cast<const BackupPhoto&>(*item).item());
  }
  return photos;
}

}  // namespace

void SLAppDelegate::exportSelectedPhotosFromSelectedBackup() {
  chooseFolderAndExport([this](BackupModel& backup) {
    return photosAtIndexes(backup, m_ui->browser->selectionIndexes().indexes());
  });
}

void SLAppDelegate::exportAllPhotosFromSelectedBackup() {
  chooseFolderAndExport([](BackupModel& backup) {
    PhotosToExport photos;
    for (const auto& item : backup.imageItems()) {
      photos.push_back(item.get());
    }
    return photos;
  });
}

void SLAppDelegate::chooseFolderAndExport(
    const std::function<PhotosToExport(BackupModel& backup)>& photos) {
  BackupModel* backup = selectedBackup();
  if (backup && backup->encrypted()) {
    sayThatItIsEncrypted();
    return;
  }
  const auto chosen = [this, backup, photos](const std::string& folder) {
    if (backup) {
      exportPhotos(photos(*backup), folder);
    }
  };
  chooseFolder(m_window.get(), "Export", chosen, m_exportFolder);
}

SLAppDelegate::PhotosToExport SLAppDelegate::photosAtIndexes(
    BackupModel& backup, const std::vector<int>& indexes) const {
  PhotosToExport photos;
  const auto& items = backup.imageItems();
  for (const int index : indexes) {
    if (index >= 0 && static_cast<std::size_t>(index) < items.size()) {
      photos.push_back(items[static_cast<std::size_t>(index)].get());
    }
  }
  return photos;
}

std::vector<std::string> SLAppDelegate::exportPhotos(const PhotosToExport& photos,
                                                     const std::string& destination) {
  std::vector<std::string> names;
  std::vector<std::string> backupFolders;
  for (const auto& device : m_bc->devices()) {
    for (const auto& backup : device->backups()) {
      backupFolders.push_back(backup->path());
    }
  }
  if (const auto problem = exportDestinationProblem(destination, backupFolders)) {
    showAlert(m_window.get(), {"The Photos Cannot Be Exported", QString::fromStdString(*problem)});
    return names;
  }
  m_exportFolder = destination;
  m_state.setExportFolder(destination);
  std::vector<PhotoToExport> wanted;
  for (const ImageItem* photo : photos) {
    names.emplace_back(lastPathComponent(photo->imageUID()));
    wanted.push_back({photo});
  }
  m_ui->exportNotice->hide();
  const ExportOptions options = exportOptions();
  const auto begin = [this, wanted, destination, options] {
    m_exports->begin(wanted, destination, options);
  };
  // Of photos that may be there already nobody knows beforehand what they need.
  const std::uint64_t needed = options.skipsExisting ? 0 : bytesOf(wanted).value_or(0);
  const auto free = freeBytes(destination);
  if (free && needed > *free) {
    askQuestion(m_window.get(), littleRoomText(destination, needed, *free), "Export Anyway", begin);
  } else {
    begin();
  }
  return names;
}

std::optional<std::vector<std::string>> SLAppDelegate::imageBrowserExportItemsToDestination(
    ORBImageBrowserView&, const std::vector<ImageBrowserItemPointer>& items,
    const std::string& destination) {
  return exportPhotos(photosOfItems(items), destination);
}

std::shared_ptr<PromisedFileList> SLAppDelegate::imageBrowserFilesOfItems(
    ORBImageBrowserView&, const std::vector<ImageBrowserItemPointer>& items) {
  return std::make_shared<TemporaryPhotos>(photosOfItems(items), tellingFailedCopy(items.size()));
}

bool SLAppDelegate::isExporting() const {
  return m_exports->isExporting();
}

ExportOptions SLAppDelegate::exportOptions() const {
  return {.keepsDates = m_ui->actionKeepDates->isChecked(),
          .skipsExisting = m_ui->actionSkipExisting->isChecked()};
}

void SLAppDelegate::updateExportProgress() {
  if (isExporting()) {
    m_ui->centreText->setText(exportProgressText(static_cast<int>(m_exports->remaining())));
    m_ui->exportSpinner->startAnimation();
    m_ui->exportProgress->tell(m_exports->progress());
  } else {
    m_ui->exportSpinner->stopAnimation();
    m_ui->exportProgress->end();
    updateCentreText();
    if (m_stopQuestion) {
      m_stopQuestion->close();
    }
  }
  updateCommands();
}

void SLAppDelegate::exportDidEnd(const ExportReport& report) {
  for (const ExportedPhoto& photo : report.failures) {
    systemLog("failed (0) to extract the file: " + photo.error->description());
  }
  if (report.summary.onFlush) {
    systemLog("failed to bring the exported photos to the disk: " +
              report.summary.onFlush->description());
  }
  if (report.summary.lost) {
    askQuestion(
        m_window.get(), lostDestinationText(report), "Retry",
        [this, report] { m_exports->begin(report.missing, report.destination, report.options); },
        "Stop", [this, report] { tellOfExport(report); });
    return;
  }
  if (report.summary.onFlush) {
    showAlert(m_window.get(), unsafeExportText(report));
  }
  tellOfExport(report);
}

void SLAppDelegate::tellOfExport(const ExportReport& report) {
  std::vector<NoticeAction> actions;
  if (!report.written.empty()) {
    actions.push_back(
        {"Show", [report] { showFilesInFileManager(report.destination, report.written); }});
  }
  if (!report.failures.empty()) {
    // As texts: the list may stand longer than the backups.
    actions.push_back(
        {"Details...",
         [this, rows = failureRows(report)] {
           showTable(m_window.get(), "Photos That Were Not Exported", {"Photo", "Reason"}, rows);
         },
         false});
    std::vector<PhotoToExport> failed = report.missing;
    failed.resize(report.failures.size());
    actions.push_back({"Retry Failed", [this, report, failed] {
                         m_exports->begin(failed, report.destination, report.options);
                       }});
  }
  m_ui->exportNotice->tell(exportedText(report), actions);
}

void SLAppDelegate::askWhetherToStopExporting() {
  const AlertText text = {"Photos Are Still Being Exported",
                          "If you stop now, the photos in hand are finished and the others stay in "
                          "the backup."};
  m_stopQuestion = askQuestion(m_window.get(), text, "Stop and Quit", [this] {
    m_exports->stopAndWait();
    m_window->close();
  });
}

// What a process that was killed left in it would else stay until something is exported there
// again. Nobody waits for the disk, which may have to start turning.
void SLAppDelegate::tidyFolderOfLastExport() {
  m_exportFolder = m_state.exportFolder();
  if (!m_exportFolder.empty()) {
    m_tidying = std::jthread([folder = m_exportFolder] {
      if (!exportDestinationProblem(folder, {})) {
        OutputFolder(folder).removeAbandonedParts();
      }
    });
  }
}

int SLAppDelegate::imageBrowserWriteItemsAtIndexesToPasteboard(ImageBrowserView&,
                                                               const std::vector<int>& indexes) {
  BackupModel* backup = m_arrayController.content();
  if (!backup || isExporting()) {
    return 0;
  }
  const PhotosToExport photos = photosAtIndexes(*backup, indexes);
  if (!photos.empty()) {
    QApplication::clipboard()->setMimeData(
        new PhotoPasteboard(photos, tellingFailedCopy(photos.size())));
  }
  return static_cast<int>(photos.size());
}

// Later, for who asks for the photos waits for an answer; and once, for he may ask again and again.
TemporaryPhotos::Failed SLAppDelegate::tellingFailedCopy(std::size_t photos) {
  return [window = QPointer(m_window.get()), photos,
          isTold = std::make_shared<bool>(false)](const std::vector<ExportedPhoto>& failures) {
    if (window && !std::exchange(*isTold, true)) {
      QMetaObject::invokeMethod(
          window, [window, text = failedCopyText(failures, photos)] { showAlert(window, text); },
          Qt::QueuedConnection);
    }
  };
}

void SLAppDelegate::copySelectedPhotos() {
  imageBrowserWriteItemsAtIndexesToPasteboard(*m_ui->browser,
                                              m_ui->browser->selectionIndexes().indexes());
}

void SLAppDelegate::revealSelectedInFinder() {
  if (const BackupModel* backup = selectedBackup()) {
    openFolderInFileManager(backup->path());
  }
}

}  // namespace snaplift
