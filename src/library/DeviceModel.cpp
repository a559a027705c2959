#include "library/DeviceModel.h"

#include <algorithm>
#include <utility>

namespace snaplift {

void DeviceModel::addBackup(std::unique_ptr<BackupModel> backup) {
  m_backups.push_back(std::move(backup));
  m_sorted = false;
}

const std::vector<std::unique_ptr<BackupModel>>& DeviceModel::backups() {
  if (!m_sorted) {
    std::ranges::sort(m_backups, [](const auto& a, const auto& b) {
      return a->date() != b->date() ? a->date() > b->date() : a->path() < b->path();
    });
    m_sorted = true;
  }
  return m_backups;
}

Instant DeviceModel::mostRecentBackupDate() {
  return backups().empty() ? Instant() : backups().front()->date();
}

}  // namespace snaplift
