#include "cli/Selection.h"

#include <utility>

#include "cli/Output.h"
#include "foundation/File.h"

namespace snaplift::cli {
namespace {

// A path on the command line names a folder with or without a slash at its end.
std::string withoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.back() == '/') {
    path.pop_back();
  }
  return path;
}

constexpr const char* wayOut = "; name a backup root or a backup on the command line";

std::string whyNoFolder(const std::string& path) {
  return path.empty()           ? "there is no backup root without a home folder"
         : fileAttributes(path) ? "not a folder that can be read: " + path
                                : "no such folder: " + path;
}

bool looksLikeBackup(const std::string& folder) {
  return fileAttributes(findFile(folder, "info.plist")).has_value();
}

}  // namespace

std::optional<Selection> Selection::initWithPath(const std::optional<std::string>& path) {
  Selection selection;
  selection.m_path = withoutTrailingSlash(path.value_or(defaultBackupRoot()));
  if (!isReadableFolder(selection.m_path)) {
    printMessage(whyNoFolder(selection.m_path) + (path ? "" : wayOut));
    return std::nullopt;
  }
  const bool damaged = looksLikeBackup(selection.m_path) && !selection.takeBackup();
  if (!selection.m_singleDevice) {
    selection.scanRoot();
    if (damaged && selection.m_devices.empty()) {
      printMessage("not a backup that can be read: " + selection.m_path);
      return std::nullopt;
    }
    if (selection.m_devices.empty()) {
      printMessage("no backups in " + selection.m_path);
    }
  }
  return selection;
}

bool Selection::takeBackup() {
  std::unique_ptr<BackupModel> backup = BackupModel::initWithBackupAtPath(m_path);
  if (!backup) {
    return false;
  }
  m_singleDevice = std::make_unique<DeviceModel>(backup->deviceName());
  m_singleDevice->addBackup(std::move(backup));
  m_devices = {m_singleDevice.get()};
  return true;
}

void Selection::scanRoot() {
  m_root = std::make_unique<BackupController>(m_path);
  for (const auto& device : m_root->devices()) {
    m_devices.push_back(device.get());
  }
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
  const std::string folder = withoutTrailingSlash(path);
  if (!isReadableFolder(folder)) {
    printMessage(whyNoFolder(folder));
    return nullptr;
  }
  std::unique_ptr<BackupModel> backup = BackupModel::initWithBackupAtPath(folder);
  if (!backup) {
    printMessage("not a backup that can be read: " + folder);
  }
  return backup;
}

std::string_view pathOnDevice(const BackupModel& backup, std::string_view uniquePath) {
  uniquePath.remove_prefix(backup.path().size());
  return uniquePath.substr(uniquePath.starts_with('/') ? 1 : 0);
}

}  // namespace snaplift::cli
