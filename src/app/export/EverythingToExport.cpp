#include "app/export/EverythingToExport.h"

#include <utility>

#include "app/words/CoreText.h"

namespace snaplift {

void EverythingToExport::add(DeviceModel& device) {
  for (const auto& backup : device.backups()) {
    m_backups.push_back({backup.get(),
                         deviceTitle(device).toStdString() + ", " + device.titleOfBackup(*backup),
                         device.titleOfHandset(*backup)});
  }
}

void EverythingToExport::start() {
  m_finishedLoading = NotificationCenter::defaultCenter().addObserver(
      std::string(finishedLoadingNotification), nullptr, [this](const Notification&) {
        QMetaObject::invokeMethod(
            this, [this] { loadNext(); }, Qt::QueuedConnection);
      });
  loadNext();
}

void EverythingToExport::loadNext() {
  while (m_loaded < m_backups.size() && m_backups[m_loaded].model->contentReady()) {
    ++m_loaded;
  }
  if (m_loaded < m_backups.size()) {
    if (m_asked != m_loaded) {
      m_asked = m_loaded;
      m_backups[m_loaded].model->prepareContent();
    }
  } else if (!m_collecting.joinable()) {
    m_collecting = std::jthread([this](const std::stop_token& stop) { collect(stop); });
  }
  emit progressed();
}

void EverythingToExport::collect(const std::stop_token& stop) {
  LayoutFolders folders(m_layout);
  for (const Backup& backup : m_backups) {
    const auto& items = backup.model->imageItems();
    if (backup.model->encrypted()) {
      m_photos.encrypted.push_back(backup.name);
      continue;
    }
    if (!backup.model->isComplete()) {
      m_photos.damaged.push_back(backup.name);
    }
    for (const auto& item : items) {
      if (stop.stop_requested()) {
        return;
      }
      m_photos.missing.push_back({item.get(), folders.folderFor(*item, backup.handset)});
    }
  }
  QMetaObject::invokeMethod(
      this, [this] { emit collected(m_photos); }, Qt::QueuedConnection);
}

}  // namespace snaplift
