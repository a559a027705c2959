// The tree of devices and backups in the sidebar: the answers to its questions, and what follows
// from its selection.

#include <QMenu>
#include <QMouseEvent>

#include "app/ApplicationImages.h"
#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "app/words/CoreText.h"
#include "ui_MainWindow.h"
#include "widgets/desktop/PlainText.h"

namespace snaplift {
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
    m_ui->sourceList->reloadItem(backup);
  }
}

}  // namespace snaplift
