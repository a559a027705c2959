#include "backups/BackupAround.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "foundation/files/File.h"
#include "foundation/files/TemporaryFolder.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;

bool holdsEntry(const std::string& folder, std::string_view name) {
  return fileAttributes(findFile(folder, name)).has_value();
}

bool isSameFolder(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return fs::equivalent(a, b, ignored);
}

}  // namespace

bool isBackupFolder(const std::string& folder) {
  constexpr std::array<std::string_view, 2> manifests{"Manifest.mbdb", "manifest.plist"};
  return holdsEntry(folder, "info.plist") &&
         std::ranges::any_of(manifests, [&](auto name) { return holdsEntry(folder, name); });
}

std::string backupAround(fs::path folder, const std::vector<std::string>& backupFolders) {
  for (;; folder = folder.parent_path()) {
    const auto isThis = [&](const std::string& backup) { return isSameFolder(folder, backup); };
    if (std::ranges::any_of(backupFolders, isThis) || isBackupFolder(folder.string())) {
      return folder.string();
    }
    if (folder == folder.root_path()) {
      return {};
    }
  }
}

void keepTemporaryFolderOutOfBackups() {
  setTemporaryFolderVeto([](const fs::path& folder) { return !backupAround(folder).empty(); });
}

}  // namespace snaplift
