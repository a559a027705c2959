#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "library/BackupController.h"

namespace snaplift::cli {

// What a PATH on the command line stands for: a backup root with its devices, or one backup. A
// folder that is itself a backup counts as one; every other readable folder counts as a root, also
// when it holds no backups. The log lines that a scan writes go to the standard error.
class Selection {
public:
  // Without a path, the user's backup root. Nothing, and a message to the user, where there is no
  // such folder, and for a damaged backup.
  static std::optional<Selection> initWithPath(const std::optional<std::string>& path);

  // The path as it was given, without a slash at its end.
  const std::string& path() const { return m_path; }

  // The root's devices, or one device with the one backup.
  const std::vector<DeviceModel*>& devices() const { return m_devices; }

  // All backups, device by device, newest first.
  std::vector<BackupModel*> backups() const;

private:
  Selection() = default;
  bool takeBackup();
  void scanRoot();

  std::string m_path;
  std::unique_ptr<BackupController> m_root;
  std::unique_ptr<DeviceModel> m_singleDevice;
  std::vector<DeviceModel*> m_devices;
};

// The one backup in the folder `path`; nothing, and a message, where it is none.
std::unique_ptr<BackupModel> backupAtPath(const std::string& path);

// A photo's path on the device: its unique path without the backup folder.
std::string_view pathOnDevice(const BackupModel& backup, std::string_view uniquePath);

}  // namespace snaplift::cli
