#pragma once

#include <memory>
#include <string>
#include <vector>

#include "library/DeviceModel.h"

namespace snaplift {

// The folder that the desktop sync software keeps its backups in, below the user's home folder:
// "Library/Application Support/MobileSync/Backup". Empty where the user has no home folder.
std::string defaultBackupRoot();

// The backup root: one folder whose direct sub-folders are backups, as the list of devices that
// they come from. The scan reads each backup's "info.plist" and nothing more, follows no link
// inside the root, and passes over whatever is no backup; one bad folder never hides the others.
// Complete when it is made, never scanned again. Owns the devices. One thread at a time.
class BackupController {
public:
  // Scans `path`. A root that is missing or cannot be read has no devices.
  explicit BackupController(std::string path);

  const std::string& basePath() const { return m_basePath; }
  // By the date of their newest backup, newest first; equal dates by name.
  const std::vector<std::unique_ptr<DeviceModel>>& devices() const { return m_devices; }

private:
  const std::string m_basePath;
  std::vector<std::unique_ptr<DeviceModel>> m_devices;
};

}  // namespace snaplift
