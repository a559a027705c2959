#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "backups/BackupModel.h"
#include "foundation/Sentence.h"

namespace snaplift {

// One device: a name and its backups, newest first (equal dates by path). Two devices that bear one
// name are one DeviceModel; a device without a name holds the backups without one. Owns its
// backups. One thread at a time.
class DeviceModel {
public:
  explicit DeviceModel(std::optional<std::string> name = std::nullopt) : m_name(std::move(name)) {}

  const std::optional<std::string>& name() const { return m_name; }
  void setName(std::optional<std::string> name) { m_name = std::move(name); }

  // What the device is called where people read it: its name, else the product type that a backup
  // of it states; that, else "Unnamed Device".
  std::optional<std::string> ownTitle();
  std::string title() { return ownTitle().value_or(unnamed); }
  static constexpr const char* unnamed = translatable("Core", "Unnamed Device");
  // What the handset is called that one of its backups was made of: the title; and where handsets
  // share it, with the end of the identifier that the backup states: "iPhone (4A7F03)".
  std::string titleOfHandset(const BackupModel& backup);
  // What one of its backups is called: its date; where others are of that day with the time, and
  // where others are of that time with the folder that tells it from them.
  std::string titleOfBackup(const BackupModel& backup);

  void addBackup(std::unique_ptr<BackupModel> backup);
  // Hands over a backup of this device.
  std::unique_ptr<BackupModel> removeBackup(const BackupModel& backup);
  // In order. The list is sorted here when backups have been added, once for all of them.
  const std::vector<std::unique_ptr<BackupModel>>& backups();
  // The date of the newest backup. The start of 1970 for a device without backups.
  Instant mostRecentBackupDate();

private:
  std::optional<std::string> m_name;
  std::vector<std::unique_ptr<BackupModel>> m_backups;
  bool m_sorted = true;
  std::map<const BackupModel*, std::string> m_titles;  // of all backups, or of none
};

}  // namespace snaplift
