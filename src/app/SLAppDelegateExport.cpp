// Export: the commands, the queue and its progress, the pasteboard, the file manager.

#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMainWindow>
#include <algorithm>
#include <iterator>
#include <utility>

#include "app/PhotoPasteboard.h"
#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "app/export/ExportText.h"
#include "app/words/CoreText.h"
#include "export/ExportDestination.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"
#include "ui_MainWindow.h"
#include "widgets/desktop/ActivityIndicator.h"
#include "widgets/desktop/Alert.h"
#include "widgets/desktop/FolderChooser.h"
#include "widgets/desktop/Workspace.h"

namespace snaplift {
namespace {

// With the films of live photos.
std::vector<ImageItem*> photosOfItems(const std::vector<ImageBrowserItemPointer>& items) {
  std::vector<ImageItem*> photos;
  photos.reserve(items.size());
  for (const ImageBrowserItemPointer& item : items) {
    const auto& photo = static_cast<const BackupPhoto&>(*item);
    photos.push_back(&photo.item());
    if (photo.film() != nullptr) {
      photos.push_back(photo.film());
    }
  }
  return photos;
}

}  // namespace

void SLAppDelegate::connectExport() {
  m_exporter =
      std::make_unique<PhotoExporter>(*m_window, *m_ui->exportProgress, *m_ui->exportNotice);
  connect(m_exporter.get(), &PhotoExporter::progressed, this, [this] { updateExportProgress(); });
  m_ui->exportNotice->setBackupFolders([this] { return backupFolders(); });
  connect(m_ui->exportNotice, &ExportNotice::skippingWanted, this, [this] {
    if (!m_ui->actionSkipExisting->isChecked()) {
      m_ui->actionSkipExisting->trigger();
    }
  });
  const auto remember = [this] { m_state.setExportSettings(exportSettings()); };
  connect(m_ui->actionSkipExisting, &QAction::triggered, this, remember);
  connect(m_ui->actionKeepDates, &QAction::triggered, this, remember);
  connect(m_ui->layoutGroup, &QActionGroup::triggered, this, remember);
}

void SLAppDelegate::exportSelectedPhotosFromSelectedBackup() {
  chooseFolderAndExport([this] {
    return m_arrayController.photosAtIndexes(m_ui->browser->selectionIndexes().indexes());
  });
}

void SLAppDelegate::exportAllPhotosFromSelectedBackup() {
  chooseFolderAndExport([this] { return m_arrayController.shownPhotos(); });
}

void SLAppDelegate::chooseFolderAndExport(const std::function<PhotosToExport()>& photos) {
  const BackupModel* backup = selectedBackup();
  if (backup && backup->encrypted()) {
    sayThatItIsEncrypted();
    return;
  }
  chooseExportFolder([this, backup, photos](const std::string& folder) {
    if (backup && backup == m_arrayController.content()) {
      exportPhotos(photos(), folder);
    }
  });
}

void SLAppDelegate::chooseExportFolder(
    const std::function<void(const std::string& folder)>& chosen) {
  chooseFolder(m_window.get(), tr("Export"), chosen, m_exportFolder);
}

void SLAppDelegate::exportEverything() {
  chooseExportFolder([this](const std::string& folder) { exportEverythingInto(folder); });
}

// The device may have gone before a folder is chosen.
void SLAppDelegate::exportDevice(DeviceModel& device) {
  chooseExportFolder([this, chosen = &device](const std::string& folder) {
    const auto& devices = m_bc->devices();
    if (std::ranges::find(devices, chosen, &std::unique_ptr<DeviceModel>::get) != devices.end()) {
      exportEverythingInto(folder, chosen);
    }
  });
}

void SLAppDelegate::exportEverythingInto(const std::string& destination, const DeviceModel* only) {
  if (m_exporter->isCollecting() || !acceptsExportInto(destination)) {
    return;
  }
  auto everything = std::make_unique<EverythingToExport>(exportSettings().layout);
  for (const auto& device : m_bc->devices()) {
    if (only == nullptr || only == device.get()) {
      everything->add(*device);
    }
  }
  m_exporter->exportEverything(std::move(everything), destination, exportOptions());
}

bool SLAppDelegate::acceptsExportInto(const std::string& destination) {
  const auto problem = exportDestinationProblem(destination, backupFolders());
  if (problem) {
    showAlert(m_window.get(), {tr("The Photos Cannot Be Exported"), coreText(*problem)});
    return false;
  }
  m_exportFolder = destination;
  m_state.setExportFolder(destination);
  return true;
}

std::vector<std::string> SLAppDelegate::backupFolders() const {
  std::vector<std::string> folders;
  std::ranges::transform(m_bc->backups(), std::back_inserter(folders), &BackupModel::path);
  return folders;
}

std::vector<std::string> SLAppDelegate::exportPhotos(const PhotosToExport& photos,
                                                     const std::string& destination) {
  std::vector<std::string> names;
  if (!acceptsExportInto(destination)) {
    return names;
  }
  ExportReport report;
  report.destination = destination;
  report.options = exportOptions();
  for (const ImageItem* photo : photos) {
    names.emplace_back(lastPathComponent(photo->imageUID()));
    report.missing.push_back({photo});
  }
  m_exporter->exportPhotos(std::move(report));
  return names;
}

std::optional<std::vector<std::string>> SLAppDelegate::imageBrowserExportItemsToDestination(
    ORBImageBrowserView&, const std::vector<ImageBrowserItemPointer>& items,
    const std::string& destination) {
  return exportPhotos(photosOfItems(items), destination);
}

std::shared_ptr<PromisedFileList> SLAppDelegate::imageBrowserFilesOfItems(
    ORBImageBrowserView&, const std::vector<ImageBrowserItemPointer>& items) {
  const PhotosToExport photos = photosOfItems(items);
  return std::make_shared<TemporaryPhotos>(photos, tellingFailedCopy(photos.size()));
}

RememberedState::Export SLAppDelegate::exportSettings() const {
  const auto layout = m_ui->layoutGroup->actions().indexOf(m_ui->layoutGroup->checkedAction());
  return {.keepsDates = m_ui->actionKeepDates->isChecked(),
          .skipsExisting = m_ui->actionSkipExisting->isChecked(),
          .layout = static_cast<ExportLayout>(layout)};
}

void SLAppDelegate::showExportSettings(const RememberedState::Export& settings) {
  m_ui->actionKeepDates->setChecked(settings.keepsDates);
  m_ui->actionSkipExisting->setChecked(settings.skipsExisting);
  m_ui->layoutGroup->actions()[static_cast<qsizetype>(settings.layout)]->setChecked(true);
}

ExportOptions SLAppDelegate::exportOptions() const {
  const RememberedState::Export settings = exportSettings();
  return {.keepsDates = settings.keepsDates, .skipsExisting = settings.skipsExisting};
}

void SLAppDelegate::updateExportProgress() {
  if (m_exporter->isExporting()) {
    m_ui->centreText->setText(exportProgressText(static_cast<int>(m_exporter->remaining())));
    m_ui->exportSpinner->setAccessibleName(tr("Exporting"));
    m_ui->exportSpinner->startAnimation();
  } else {
    m_ui->exportSpinner->stopAnimation();
    m_ui->exportSpinner->setAccessibleName({});  // some readers meet what is hidden
    updateCentreText();
  }
  updateCommands();
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
  if (m_exporter->isExporting()) {
    return 0;
  }
  const PhotosToExport photos = m_arrayController.photosAtIndexes(indexes);
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
