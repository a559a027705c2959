// Get Info, the bytes in the bottom bar, and the menus of photos and devices.

#include <QMainWindow>
#include <QMenu>
#include <utility>

#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "app/details/DetailsText.h"
#include "foundation/Log.h"
#include "foundation/files/Path.h"
#include "ui_MainWindow.h"
#include "widgets/desktop/PlainText.h"
#include "widgets/desktop/Workspace.h"

namespace snaplift {

void SLAppDelegate::connectDetails() {
  m_details = std::make_unique<SelectionDetails>(*m_ui->browser, *m_ui->details, *m_ui->bytesText,
                                                 [this] { return shownPhotos(); });
  // Beside the panel the photos have as much room as without it.
  const int narrowest = m_window->minimumWidth();
  connect(m_ui->actionGetInfo, &QAction::toggled, this, [this, narrowest](bool opens) {
    m_window->setMinimumWidth(narrowest + (opens ? m_ui->details->minimumWidth() : 0));
    m_details->setOpen(opens);
    m_state.setShowsInfo(opens);
  });
  connect(m_ui->details, &PhotoDetails::closeWanted, m_ui->actionGetInfo,
          [this] { m_ui->actionGetInfo->setChecked(false); });
  m_ui->sourceList->setGroupMenu([this](OutlineItem group) {
    auto* device = group.as<DeviceModel>();
    return device && !device->backups().empty() ? menuOfDevice(*device) : nullptr;
  });
}

QMenu* SLAppDelegate::menuOfDevice(DeviceModel& device) {
  m_contextMenu = std::make_unique<QMenu>();
  QAction* exports = m_contextMenu->addAction(tr("Export All of This Device..."));
  exports->setEnabled(m_ui->actionExportEverything->isEnabled());
  connect(exports, &QAction::triggered, this, [this, &device] { exportDevice(device); });
  m_contextMenu->addSeparator();
  connect(m_contextMenu->addAction(tr("Reveal")), &QAction::triggered, this,
          [newest = device.backups().front()->path()] {
            openFolderInFileManager(std::string(parentPath(newest)));
          });
  return m_contextMenu.get();
}

void SLAppDelegate::imageBrowserContextMenuAtPoint(ImageBrowserView&, QPoint globalPoint) {
  updateCommands();
  m_photoMenu = std::make_unique<QMenu>();
  m_photoMenu->addAction(m_ui->actionPreview);
  QAction* exports = m_photoMenu->addAction(tr("Export..."));
  exports->setEnabled(m_ui->actionExportSelected->isEnabled());
  connect(exports, &QAction::triggered, m_ui->actionExportSelected, &QAction::trigger);
  m_photoMenu->addAction(m_ui->actionCopy);
  m_photoMenu->addAction(m_ui->actionGetInfo);
  m_photoMenu->addSeparator();
  m_photoMenu->addAction(m_ui->actionSelectAll);
  m_photoMenu->popup(globalPoint);
}

SelectionDetails::Shown SLAppDelegate::shownPhotos() {
  SelectionDetails::Shown shown;
  BackupModel* backup = m_arrayController.content();
  if (!backup || backup->encrypted()) {
    return shown;
  }
  const ImageBrowserView& browser = *m_ui->browser;
  const std::vector<int> selected = browser.selectionIndexes().indexes();
  shown.selected = static_cast<int>(selected.size());
  const std::vector<ImageItem*> photos = selected.empty()
                                             ? m_arrayController.shownPhotos()
                                             : m_arrayController.photosAtIndexes(selected);
  shown.photos.assign(photos.begin(), photos.end());
  if (shown.selected == 1) {
    shown.item = browser.itemAtIndex(selected.front());
    const auto& photo = static_cast<const BackupPhoto&>(*shown.item);
    shown.photo = &photo.item();
    shown.film = photo.film();
  }
  DeviceModel* device = m_bc->deviceOf(*backup);
  shown.title = plainText::shortened(device ? device->title() : backup->name());
  shown.backup = {
      {tr("Backup of"), detailsText::date(detailsText::localDate(backup->date()))},
      {tr("System version"), plainText::shortened(backup->productVersion().value_or(""))},
      {tr("Folder"), plainText::shortened(escapedForLog(backup->path()))}};
  return shown;
}

}  // namespace snaplift
