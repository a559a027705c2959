#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "backups/BackupController.h"
#include "backups/BackupSearch.h"

namespace snaplift::cli {

// How a command line names backups.
struct BackupNames {
  // Paths of whatever backups can be found in or below; or, of backups of the root, the folder's
  // name, the beginning of it, or "latest".
  std::vector<std::string> names = {};
  std::vector<std::string> deviceNames = {};  // all backups of these devices of the root
  std::optional<std::string> root = {};       // absent: the user's backup root
  bool wantsAllMedia = false;  // of each backup, its films and other pictures beside its photos
};

// The backups that a command line names, each once. The log lines that finding them writes go to
// the standard error.
class Selection {
public:
  // Without any name, the backups of the root. Nothing, and a message to the user, where a name
  // leads nowhere or to a damaged backup. A folder without backups is no error: it is told of.
  static std::optional<Selection> initWithNames(const BackupNames& names);

  // The path that was named first, without a slash at its end; else the root.
  const std::string& path() const { return m_path; }

  const std::vector<std::unique_ptr<DeviceModel>>& devices() const { return m_library->devices(); }
  DeviceModel& deviceOf(const BackupModel& backup) const { return *m_library->deviceOf(backup); }
  // In the order in which they were named; of one folder device by device, newest first.
  const std::vector<BackupModel*>& backups() const { return m_backups; }

  // The photos of one of them, and what else is wanted of it. Loads it, and tells the user what
  // there is besides.
  const std::vector<std::unique_ptr<ImageItem>>& photosOf(BackupModel& backup) const;

private:
  Selection() = default;
  bool takeRoot(const std::optional<std::string>& root);
  bool takeFolder(const std::string& folder);

  std::string m_path;
  std::unique_ptr<BackupController> m_library;
  std::vector<BackupModel*> m_backups;
  bool m_wantsAllMedia = false;
};

// The selection that is one backup; nothing, and a message, where it is none or several.
std::optional<Selection> selectOneBackup(const BackupNames& names);

// Tells of what a search has left out. The answer is whether that is nothing that a disk kept to
// itself.
bool tellOfSearch(const BackupSearchResult& result);

// A photo's path on the device: its unique path without the backup folder.
std::string_view pathOnDevice(const BackupModel& backup, std::string_view uniquePath);

}  // namespace snaplift::cli
