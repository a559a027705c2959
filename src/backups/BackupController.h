#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "backups/BackupPlaces.h"
#include "backups/DeviceModel.h"
#include "foundation/files/File.h"

namespace snaplift {

// The backups that are open, as the list of devices that they come from: those of the backup root,
// a folder whose direct sub-folders are backups, and those that were found in other folders. A
// backup that several folders lead to is there once.
//
// The scan of the root reads each backup's "info.plist" and nothing more, follows no link inside
// the root, and passes over whatever is no backup; one bad folder never hides the others. It is
// complete when the controller is made, and never done again.
//
// Owns the devices. A backup that is closed is no longer listed but lives as long as the
// controller: its photos may still be on their way somewhere. One thread at a time.
class BackupController {
public:
  // Without any folder.
  BackupController() = default;
  // Scans `path`. A root that is missing or cannot be read has no devices.
  explicit BackupController(std::string path);

  const std::string& basePath() const { return m_basePath; }
  // By the date of their newest backup, newest first; equal dates by name.
  const std::vector<std::unique_ptr<DeviceModel>>& devices() const { return m_devices; }
  // Device by device, newest first.
  std::vector<BackupModel*> backups() const;
  // The listed device that a backup is of; null where the backup is closed.
  DeviceModel* deviceOf(const BackupModel& backup) const;

  // Lists backups that were found in or below `folder`, and answers those that this folder leads
  // to, in the order given, also those that were open already. A backup that is opened again
  // unchanged is the one that it was.
  std::vector<BackupModel*> addBackups(const std::string& folder,
                                       std::vector<std::unique_ptr<BackupModel>> backups);
  // The folders that led to a backup, in the order in which they came.
  const std::vector<std::string>& folders() const { return m_folders; }
  // Closes the backups that no other folder leads to. Devices without a backup go from the list.
  void closeFolder(const std::string& folder);
  // The folders that lead to this backup.
  std::vector<std::string> foldersOf(const BackupModel& backup) const;

private:
  struct OpenBackup {
    BackupModel* backup = nullptr;
    std::vector<std::string> folders;  // that lead to it
  };

  std::unique_ptr<BackupModel> reopened(const FolderIdentity& identity, const BackupModel& found);
  DeviceModel& deviceNamed(const std::optional<std::string>& name);
  void sortDevices();

  const std::string m_basePath;
  std::vector<std::string> m_folders;
  std::vector<std::unique_ptr<DeviceModel>> m_devices;
  std::map<std::optional<std::string>, DeviceModel*> m_deviceNamed;
  std::map<FolderIdentity, OpenBackup> m_open;
  std::multimap<FolderIdentity, std::unique_ptr<BackupModel>> m_closed;
  std::vector<std::unique_ptr<DeviceModel>> m_closedDevices;  // a view may still know them
};

}  // namespace snaplift
