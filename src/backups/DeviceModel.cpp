#include "backups/DeviceModel.h"

#include <algorithm>
#include <utility>

#include "foundation/Time.h"
#include "foundation/files/Path.h"

namespace snaplift {

namespace {

// Gives what `words` adds to each title that several backups share.
template <class Words>
void tellApart(std::map<const BackupModel*, std::string>& titles, Words words) {
  std::map<std::string, int> count;
  for (const auto& [backup, title] : titles) {
    ++count[title];
  }
  for (auto& [backup, title] : titles) {
    if (count[title] > 1) {
      title += words(*backup);
    }
  }
}

}  // namespace

std::string DeviceModel::title() {
  const auto isText = [](const std::string& text) {
    return text.find_first_not_of(" \t\n") != std::string::npos;
  };
  if (m_name && isText(*m_name)) {
    return *m_name;
  }
  for (const auto& backup : backups()) {
    if (backup->productType() && isText(*backup->productType())) {
      return *backup->productType();
    }
  }
  return "Unnamed Device";
}

std::string DeviceModel::titleOfBackup(const BackupModel& backup) {
  if (m_titles.empty()) {
    for (const auto& each : m_backups) {
      m_titles.emplace(each.get(), each->name());
    }
    tellApart(m_titles, [](const BackupModel& each) { return ", " + timeOfDayText(each.date()); });
    tellApart(m_titles, [](const BackupModel& each) {
      return " (" + std::string(lastPathComponent(each.path())) + ")";
    });
  }
  return m_titles[&backup];
}

void DeviceModel::addBackup(std::unique_ptr<BackupModel> backup) {
  m_titles.clear();
  m_backups.push_back(std::move(backup));
  m_sorted = false;
}

std::unique_ptr<BackupModel> DeviceModel::removeBackup(const BackupModel& backup) {
  const auto entry = std::ranges::find(m_backups, &backup, &std::unique_ptr<BackupModel>::get);
  m_titles.clear();
  std::unique_ptr<BackupModel> removed = std::move(*entry);
  m_backups.erase(entry);
  return removed;
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
