#include "library/ExportDestination.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

#include "foundation/File.h"
#include "foundation/FileWriting.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;

bool holdsEntry(const std::string& folder, std::string_view name) {
  return fileAttributes(findFile(folder, name)).has_value();
}

bool looksLikeBackup(const std::string& folder) {
  constexpr std::array<std::string_view, 2> manifests{"Manifest.mbdb", "manifest.plist"};
  return holdsEntry(folder, "info.plist") &&
         std::ranges::any_of(manifests, [&](auto name) { return holdsEntry(folder, name); });
}

bool isSameFolder(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return fs::equivalent(a, b, ignored);
}

// The backup that `folder`, an absolute path without links, is or lies in; empty where there is
// none.
std::string backupAround(fs::path folder, const std::vector<std::string>& backupFolders) {
  for (;; folder = folder.parent_path()) {
    const auto isThis = [&](const std::string& backup) { return isSameFolder(folder, backup); };
    if (std::ranges::any_of(backupFolders, isThis) || looksLikeBackup(folder.string())) {
      return folder.string();
    }
    if (folder == folder.root_path()) {
      return {};
    }
  }
}

std::string quoted(const std::string& path) {
  return '"' + path + '"';
}

}  // namespace

std::optional<std::string> exportDestinationProblem(const std::string& destination,
                                                    const std::vector<std::string>& backupFolders) {
  std::error_code error;
  const fs::file_status status = fs::status(destination, error);
  if (status.type() == fs::file_type::not_found) {
    return "The folder " + quoted(destination) + " does not exist.";
  }
  if (fs::exists(status) && !fs::is_directory(status)) {
    return quoted(destination) + " is not a folder.";
  }
  const fs::path resolved = fs::canonical(destination, error);
  if (!error) {
    const std::string backup = backupAround(resolved, backupFolders);
    if (!backup.empty()) {
      return quoted(destination) + " lies in the backup " + quoted(backup) +
             ", and nothing is ever written into a backup.";
    }
  }
  if (error || !isWritableFolder(destination)) {
    return "Nothing can be written into the folder " + quoted(destination) + ".";
  }
  return std::nullopt;
}

}  // namespace snaplift
