// Export: the commands, the queue and its progress, the pasteboard, the file manager.

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMainWindow>
#include <QThread>

#include "app/ExportBatch.h"
#include "app/PhotoPasteboard.h"
#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "foundation/Log.h"
#include "foundation/Path.h"
#include "library/ExportDestination.h"
#include "toolkit/ActivityIndicator.h"
#include "toolkit/Alert.h"
#include "toolkit/FolderChooser.h"
#include "toolkit/Workspace.h"
#include "ui_MainWindow.h"

namespace snaplift {
namespace {

AlertText failedExportText(const ExportFailures& failures) {
  if (failures.failedCount == 0) {
    return {"The Photos May Not Be Safe Yet",
            QStringLiteral("All photos were exported, but their disk does not confirm that it has "
                           "them (%1). Look at them before you give the backup away.")
                .arg(QString::fromStdString(failures.onFlush->reason()))};
  }
  QString text("The backup is unchanged.\n");
  for (const ExportFailures::Photo& photo : failures.first) {
    text += QStringLiteral("\n%1: %2")
                .arg(QString::fromStdString(escapedForLog(photo.name)),
                     QString::fromStdString(photo.error.reason()));
  }
  if (failures.failedCount > failures.first.size()) {
    text += QStringLiteral("\nand %1 more").arg(failures.failedCount - failures.first.size());
  }
  return {QStringLiteral("%1 of %2 Photos Could Not Be Exported")
              .arg(failures.failedCount)
              .arg(failures.photoCount),
          text};
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
  chooseFolder(m_window.get(), "Export", [this, backup, photos](const std::string& folder) {
    if (backup) {
      exportPhotos(photos(*backup), folder);
    }
  });
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
  const auto report = [this](const ExportFailures& failures) {
    QMetaObject::invokeMethod(
        this, [this, failures] { tellOfFailures(failures); }, Qt::QueuedConnection);
  };
  const auto batch = std::make_shared<ExportBatch>(destination, photos.size(), report);
  for (ImageItem* photo : photos) {
    names.emplace_back(lastPathComponent(photo->imageUID()));
    m_exportOperationQueue->addOperation([photo, batch] { batch->extract(*photo); });
  }
  return names;
}

std::optional<std::vector<std::string>> SLAppDelegate::imageBrowserExportItemsToDestination(
    ORBImageBrowserView&, const std::vector<ImageBrowserItemPointer>& items,
    const std::string& destination) {
  PhotosToExport photos;
  for (const ImageBrowserItemPointer& item : items) {
    photos.push_back(&static_cast<const BackupPhoto&>(*item).item());
  }
  return exportPhotos(photos, destination);
}

bool SLAppDelegate::isExporting() const {
  return m_exportOperationQueue->operationCount() > 0;
}

void SLAppDelegate::exportOperationsDidChange() {
  if (QThread::currentThread() == thread()) {
    updateExportProgress();
  } else if (!m_exportUpdateIsPosted.exchange(true)) {
    // One posted update at a time reads the count when it runs: however many photos finish
    // meanwhile, the last state is shown and the event loop is not flooded.
    QMetaObject::invokeMethod(
        this,
        [this] {
          m_exportUpdateIsPosted = false;
          updateExportProgress();
        },
        Qt::QueuedConnection);
  }
}

void SLAppDelegate::updateExportProgress() {
  const std::size_t remaining = m_exportOperationQueue->operationCount();
  m_ui->centreText->setText(exportProgressText(static_cast<int>(remaining)));
  m_ui->exportSpinner->startAnimation();
  if (remaining == 0) {
    m_ui->exportSpinner->stopAnimation();
    updateCentreText();
  }
  updateCommands();
}

void SLAppDelegate::tellOfFailures(const ExportFailures& failures) {
  showAlert(m_window.get(), failedExportText(failures));
}

void SLAppDelegate::askWhetherToStopExporting() {
  const AlertText text = {"Photos Are Still Being Exported",
                          "If you stop now, the photos in hand are finished and the others stay in "
                          "the backup."};
  askQuestion(m_window.get(), text, "Stop and Quit", [this] {
    m_exportOperationQueue->cancelAllOperations();
    m_exportOperationQueue->waitUntilAllOperationsAreFinished();
    m_window->close();
  });
}

int SLAppDelegate::imageBrowserWriteItemsAtIndexesToPasteboard(ImageBrowserView&,
                                                               const std::vector<int>& indexes) {
  BackupModel* backup = m_arrayController.content();
  if (!backup || isExporting()) {
    return 0;
  }
  const PhotosToExport photos = photosAtIndexes(*backup, indexes);
  if (!photos.empty()) {
    QApplication::clipboard()->setMimeData(new PhotoPasteboard(photos));
  }
  return static_cast<int>(photos.size());
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
