#include "library/BackupController.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

#include "foundation/File.h"
#include "foundation/Log.h"
#include "foundation/Parallel.h"
#include "foundation/Path.h"

namespace snaplift {

std::string defaultBackupRoot() {
  const char* home = std::getenv("HOME");
  return home && *home ? joinPath(home, "Library/Application Support/MobileSync/Backup")
                       : std::string();
}

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
  std::map<std::optional<std::string>, DeviceModel*> deviceNamed;
  for (std::unique_ptr<BackupModel>& backup : backups) {
    if (!backup) {
      continue;
    }
    DeviceModel*& device = deviceNamed[backup->deviceName()];
    if (!device) {
      m_devices.push_back(std::make_unique<DeviceModel>(backup->deviceName()));
      device = m_devices.back().get();
    }
    device->addBackup(std::move(backup));
  }
  std::ranges::sort(m_devices, [](const auto& a, const auto& b) {
    const Instant dateOfA = a->mostRecentBackupDate();
    const Instant dateOfB = b->mostRecentBackupDate();
    return dateOfA != dateOfB ? dateOfA > dateOfB : a->name() < b->name();
  });
}

}  // namespace snaplift
