#include "cli/Selection.h"

#include <utility>

#include "cli/Output.h"
#include "foundation/File.h"
#include "foundation/Path.h"

namespace snaplift::cli {
namespace {

// A path on the command line names a folder with or without a slash at its end.
std::string withoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') {
    path.pop_back();
  }
  return path;
}

bool looksLikeBackup(const std::string& folder) {
  return fileAttributes(findFile(folder, "info.plist")).has_value();
}

}  // namespace

std::optional<Selection> Selection::initWithPath(const std::optional<std::string>& path) {
  Selection selection;
  selection.m_path = withoutTrailingSlash(path.value_or(defaultBackupRoot()));
  if (selection.m_path.empty() || !isReadableFolder(selection.m_path)) {
    printMessage("no such backup root or backup: " + selection.m_path);
    return std::nullopt;
  }
  if (looksLikeBackup(selection.m_path)) {
    std::unique_ptr<BackupModel> backup = backupAtPath(selection.m_path);
    if (!backup) {
      return std::nullopt;
    }
    selection.m_singleDevice = std::make_unique<DeviceModel>(backup->deviceName());
    selection.m_singleDevice->addBackup(std::move(backup));
    selection.m_devices = {selection.m_singleDevice.get()};
    return selection;
  }
  selection.m_root = std::make_unique<BackupController>(selection.m_path);
  for (const auto& device : selection.m_root->devices()) {
    selection.m_devices.push_back(device.get());
  }
  return selection;
}

std::vector<BackupModel*> Selection::backups() const {
  std::vector<BackupModel*> all;
  for (DeviceModel* device : m_devices) {
    for (const auto& backup : device->backups()) {
      all.push_back(backup.get());
    }
  }
  return all;
}

std::unique_ptr<BackupModel> backupAtPath(const std::string& path) {
  std::unique_ptr<BackupModel> backup =
      BackupModel::initWithBackupAtPath(withoutTrailingSlash(path));
  if (!backup) {
    printMessage("not a backup that can be read: " + path);
  }
  return backup;
}

}  // namespace snaplift::cli
