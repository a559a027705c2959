#include "backups/BackupController.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "foundation/Log.h"
#include "foundation/Parallel.h"
#include "foundation/files/Path.h"

namespace snaplift {
BackupController::BackupController(std::string path) : m_basePath(std::move(path)) {
  std::error_code error;
  const std::vector<std::string> folders = subfolders(m_basePath, error);
  if (error && error != std::errc::no_such_file_or_directory &&
      error != std::errc::not_a_directory) {
    systemLog("cannot read, backups may be missing: " + m_basePath + ": " + error.message());
  }
  std::vector<std::unique_ptr<BackupModel>> backups(folders.size());
  parallelForFiles(folders.size(), [&](std::size_t i) {
    backups[i] = BackupModel::initWithBackupAtPath(joinPath(m_basePath, folders[i]));
  });
  std::erase(backups, nullptr);
  addBackups(m_basePath, std::move(backups));
}

std::vector<BackupModel*> BackupController::backups() const {
  std::vector<BackupModel*> all;
  for (const auto& device : m_devices) {
    for (const auto& backup : device->backups()) {
      all.push_back(backup.get());
    }
  }
  return all;
}

DeviceModel* BackupController::deviceOf(const BackupModel& backup) const {
  const auto device =
      std::ranges::find(m_devices, backup.deviceName(), [](const auto& d) { return d->name(); });
  return device == m_devices.end() ? nullptr : device->get();
}

std::vector<BackupModel*> BackupController::addBackups(
    const std::string& folder, std::vector<std::unique_ptr<BackupModel>> backups) {
  std::vector<BackupModel*> added;
  for (std::unique_ptr<BackupModel>& found : backups) {
    const std::optional<FolderIdentity> identity = found->folder();
    if (!identity) {
      systemLog("gone since it was found: " + found->path());
      continue;
    }
    OpenBackup& open = m_open[*identity];
    if (!open.backup) {
      std::unique_ptr<BackupModel> backup = reopened(*identity, *found);
      if (!backup) {
        backup = std::move(found);
      }
      open.backup = backup.get();
      DeviceModel& device = deviceNamed(backup->deviceName());
      device.addBackup(std::move(backup));
    }
    if (std::ranges::find(open.folders, folder) == open.folders.end()) {
      open.folders.push_back(folder);
    }
    added.push_back(open.backup);
  }
  if (!added.empty() && std::ranges::find(m_folders, folder) == m_folders.end()) {
    m_folders.push_back(folder);
  }
  sortDevices();
  return added;
}

std::unique_ptr<BackupModel> BackupController::reopened(const FolderIdentity& identity,
                                                        const BackupModel& found) {
  const auto [first, last] = m_closed.equal_range(identity);
  const auto same = std::find_if(first, last, [&](const auto& closed) {
    return closed.second->path() == found.path() && closed.second->date() == found.date() &&
           closed.second->isComplete();  // it may have been read while its disk failed
  });
  return same == last ? nullptr : std::move(m_closed.extract(same).mapped());
}

DeviceModel& BackupController::deviceNamed(const std::optional<std::string>& name) {
  DeviceModel*& device = m_deviceNamed[name];
  if (!device) {
    device = m_devices.emplace_back(std::make_unique<DeviceModel>(name)).get();
  }
  return *device;
}

void BackupController::sortDevices() {
  std::ranges::sort(m_devices, [](const auto& a, const auto& b) {
    const Instant dateOfA = a->mostRecentBackupDate();
    const Instant dateOfB = b->mostRecentBackupDate();
    return dateOfA != dateOfB ? dateOfA > dateOfB : a->name() < b->name();
  });
}

void BackupController::closeFolder(const std::string& folder) {
  std::erase(m_folders, folder);
  for (auto entry = m_open.begin(); entry != m_open.end();) {
    OpenBackup& open = entry->second;
    if (std::erase(open.folders, folder) == 0 || !open.folders.empty()) {
      ++entry;
      continue;
    }
    DeviceModel& device = deviceNamed(open.backup->deviceName());
    m_closed.emplace(entry->first, device.removeBackup(*open.backup));
    entry = m_open.erase(entry);
  }
  const auto isEmpty = [](const auto& device) { return device->backups().empty(); };
  for (const auto& device : m_devices) {
    if (isEmpty(device)) {
      m_deviceNamed.erase(device->name());
    }
  }
  const auto empty =
      std::stable_partition(m_devices.begin(), m_devices.end(), std::not_fn(isEmpty));
  std::move(empty, m_devices.end(), std::back_inserter(m_closedDevices));
  m_devices.erase(empty, m_devices.end());
  sortDevices();
}

std::vector<std::string> BackupController::foldersOf(const BackupModel& backup) const {
  const auto entry =
      std::ranges::find(m_open, &backup, [](const auto& e) { return e.second.backup; });
  return entry == m_open.end() ? std::vector<std::string>() : entry->second.folders;
}

}  // namespace snaplift
