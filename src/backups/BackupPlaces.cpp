#include "backups/BackupPlaces.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <mntent.h>

#include "foundation/files/File.h"
#include "foundation/files/FolderTree.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

// A "*" stands for every folder in its place. Each system names its folder of application data in
// its own way, and each version of the software its own folder in that.
constexpr std::array<std::string_view, 10> places = {
    "Library/Application Support/MobileSync/Backup",
    "MobileSync/Backup",
    "Backup",
    "*/MobileSync/Backup",
    "AppData/Roaming/*/MobileSync/Backup",
    "Application Data/*/MobileSync/Backup",
    "Users/*/Library/Application Support/MobileSync/Backup",
    "Users/*/*/MobileSync/Backup",
    "Users/*/AppData/Roaming/*/MobileSync/Backup",
    "Documents and Settings/*/Application Data/*/MobileSync/Backup",
};
// Of the folders that a "*" stands for, so many are looked at: no disk has more users.
constexpr std::size_t maximumFoldersOfAStar = 200;

std::vector<std::string> foldersIn(const FolderTree& tree, const std::string& folder) {
  std::vector<std::string> found;
  tree.visitEntries(folder, [&](std::string_view name, bool isFolder) {
    if (isFolder) {
      found.push_back(joinPath(folder, name));
    }
    return found.size() < maximumFoldersOfAStar;
  });
  return found;
}

void addMatches(const FolderTree& tree, const std::string& folder, std::string_view pattern,
                std::vector<std::string>& matches) {
  const std::size_t star = pattern.find('*');
  if (star == std::string_view::npos) {
    std::string place = joinPath(folder, pattern);
    if (tree.holdsFolder(place)) {
      matches.push_back(std::move(place));
    }
    return;
  }
  const std::string before = star == 0 ? folder : joinPath(folder, pattern.substr(0, star - 1));
  for (const std::string& each : foldersIn(tree, before)) {
    addMatches(tree, each, pattern.substr(star + 2), matches);
  }
}

bool isFileOfBackups(std::string_view name) {
  return equalsIgnoringCase(name, "info.plist") ||
         equalsIgnoringCase(name.substr(0, 9), "manifest.");
}

}  // namespace

std::string defaultBackupRoot() {
  const char* home = std::getenv("HOME");
  return home && *home ? joinPath(home, places.front()) : std::string();
}

std::string folderMeantBy(std::string path) {
  while (path.size() > 1 && path.back() == '/') {
    path.pop_back();
  }
  const auto attributes = fileAttributes(path);
  if (attributes && attributes->type != FileType::Folder &&
      isFileOfBackups(lastPathComponent(path))) {
    const std::string_view folder = parentPath(path);
    return folder.empty() ? "." : std::string(folder);
  }
  return path;
}

std::optional<Sentence> whyFolderCannotBeRead(const std::string& folder) {
  const std::error_code error = FolderTree(folder).error();
  if (!error) {
    return std::nullopt;
  }
  if (error == std::errc::no_such_file_or_directory) {
    return Sentence{translatable("Core", "no such folder: %1"), {folder}};
  }
  if (error == std::errc::not_a_directory) {
    return Sentence{translatable("Core", "not a folder: %1"), {folder}};
  }
  if (error == std::errc::permission_denied) {
    return Sentence{translatable("Core", "no permission to read the folder: %1"), {folder}};
  }
  return Sentence{"%1: %2", {error.message(), folder}};
}

bool looksLikeBackup(const std::string& folder) {
  return fileAttributes(findFile(folder, "info.plist")).has_value();
}

bool isBackupReadFromDisk(const std::string& folder) {
  return isReadFromDisk(findFile(folder, "info.plist"));
}

std::vector<std::string> knownBackupRoots(const FolderTree& tree) {
  std::vector<std::string> roots;
  for (const std::string_view place : places) {
    addMatches(tree, "", place, roots);
  }
  return roots;
}

std::vector<std::string> connectedDisks() {
  constexpr std::array<std::string_view, 3> above = {"/media/", "/run/media/", "/mnt/"};
  std::vector<std::string> disks;
  const std::unique_ptr<FILE, int (*)(FILE*)> mounts(::setmntent("/proc/self/mounts", "r"),
                                                     ::endmntent);
  mntent entry;
  char buffer[8192];
  while (mounts && ::getmntent_r(mounts.get(), &entry, buffer, sizeof buffer)) {
    const std::string_view disk = entry.mnt_dir;
    if (std::ranges::any_of(above, [&](auto place) { return disk.starts_with(place); })) {
      disks.emplace_back(disk);
    }
  }
  return disks;
}

}  // namespace snaplift
