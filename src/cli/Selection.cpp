#include "cli/Selection.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "backups/BackupSearch.h"
#include "cli/Output.h"
#include "foundation/Log.h"
#include "foundation/files/File.h"
#include "foundation/files/Path.h"

namespace snaplift::cli {
namespace {

constexpr const char* latest = "latest";
constexpr const char* wayOut = "; name a backup root or a backup on the command line";

std::optional<std::string> rootFolder(const std::optional<std::string>& root) {
  const std::string folder = folderMeantBy(root.value_or(defaultBackupRoot()));
  if (folder.empty()) {
    printMessage(std::string("there is no backup root without a home folder") + wayOut);
    return std::nullopt;
  }
  if (const auto problem = whyFolderCannotBeRead(folder)) {
    printMessage(problem->text() + (root ? "" : wayOut));
    return std::nullopt;
  }
  return folder;
}

// The backups that can be named without a path. Read for their names only, without a word.
class RootToChooseFrom {
public:
  explicit RootToChooseFrom(const std::string& folder) {
    const LogCapture silence([](const std::string&) {});
    m_root = std::make_unique<BackupController>(folder);
  }

  // The path of the backup that `name` means; nothing, and a message, where that is not one.
  std::optional<std::string> folderNamed(const std::string& name) const {
    const std::vector<BackupModel*> all = m_root->backups();
    const auto folderName = [](const BackupModel* backup) {
      return lastPathComponent(backup->path());
    };
    std::vector<BackupModel*> meant;
    if (name == latest && !all.empty()) {
      meant = {*std::ranges::max_element(all, {}, &BackupModel::date)};
    } else if (const auto exact = std::ranges::find(all, name, folderName); exact != all.end()) {
      meant = {*exact};
    } else {
      std::ranges::copy_if(all, std::back_inserter(meant),
                           [&](auto* backup) { return folderName(backup).starts_with(name); });
    }
    if (meant.size() == 1) {
      return meant.front()->path();
    }
    std::string message = meant.empty()
                              ? "no such folder: " + name + ", and no backup of that name in "
                              : "several backups begin with " + name + " in ";
    message += m_root->basePath();
    for (const BackupModel* backup : meant) {
      message += (backup == meant.front() ? ": " : ", ") + std::string(folderName(backup));
    }
    printMessage(message);
    return std::nullopt;
  }

  // The paths of a device's backups; nothing, and a message, where there is no such device.
  std::optional<std::vector<std::string>> foldersOfDevice(const std::string& name) const {
    std::string others;
    for (const auto& device : m_root->devices()) {
      if (device->name() == name) {
        std::vector<std::string> folders;
        std::ranges::transform(device->backups(), std::back_inserter(folders),
                               [](const auto& backup) { return backup->path(); });
        return folders;
      }
      others += device->name() ? (others.empty() ? "; there are: " : ", ") + *device->name() : "";
    }
    printMessage("no device called " + name + " in " + m_root->basePath() + others);
    return std::nullopt;
  }

private:
  std::unique_ptr<BackupController> m_root;
};

bool canBeNameInRoot(const std::string& name) {
  return isFileName(name) && !fileAttributes(name);
}

// The folders that the names mean; nothing, and a message, where one means none.
std::optional<std::vector<std::string>> foldersOf(const BackupNames& names) {
  std::optional<RootToChooseFrom> root;
  if (!names.deviceNames.empty() || std::ranges::any_of(names.names, canBeNameInRoot)) {
    const auto folder = rootFolder(names.root);
    if (!folder) {
      return std::nullopt;
    }
    root.emplace(*folder);
  }
  std::vector<std::string> folders;
  for (const std::string& name : names.names) {
    const auto folder =
        canBeNameInRoot(name) ? root->folderNamed(name) : std::optional(folderMeantBy(name));
    if (!folder) {
      return std::nullopt;
    }
    folders.push_back(*folder);
  }
  for (const std::string& device : names.deviceNames) {
    const auto found = root->foldersOfDevice(device);
    if (!found) {
      return std::nullopt;
    }
    std::ranges::copy(*found, std::back_inserter(folders));
  }
  return folders;
}

}  // namespace

std::optional<Selection> Selection::initWithNames(const BackupNames& names) {
  Selection selection;
  selection.m_wantsAllMedia = names.wantsAllMedia;
  if (names.names.empty() && names.deviceNames.empty()) {
    return selection.takeRoot(names.root) ? std::optional(std::move(selection)) : std::nullopt;
  }
  const auto folders = foldersOf(names);
  if (!folders) {
    return std::nullopt;
  }
  selection.m_library = std::make_unique<BackupController>();
  selection.m_path = folders->front();
  if (!std::ranges::all_of(*folders, [&](auto& folder) { return selection.takeFolder(folder); })) {
    return std::nullopt;
  }
  return selection;
}

bool Selection::takeRoot(const std::optional<std::string>& root) {
  const auto folder = rootFolder(root);
  if (!folder) {
    return false;
  }
  m_path = *folder;
  m_library = std::make_unique<BackupController>(*folder);
  m_backups = m_library->backups();
  if (m_backups.empty()) {
    printMessage("no backups in " + *folder);
  }
  return true;
}

bool Selection::takeFolder(const std::string& folder) {
  if (const auto problem = whyFolderCannotBeRead(folder)) {
    printMessage(problem->text());
    return false;
  }
  std::vector<std::unique_ptr<BackupModel>> found;
  tellOfSearch(searchForBackups({folder},
                                {.found = [&](auto backup) { found.push_back(std::move(backup)); },
                                 .unreadable =
                                     [](const std::string& path, const std::error_code& error) {
                                       printMessage("cannot read " + path + ": " + error.message());
                                     }}));
  if (found.empty()) {
    const bool isDamaged = looksLikeBackup(folder);
    printMessage((isDamaged ? "not a backup that can be read: " : "no backups in ") + folder);
    return !isDamaged;
  }
  const std::vector<BackupModel*> added = m_library->addBackups(folder, std::move(found));
  for (BackupModel* backup : m_library->backups()) {
    if (std::ranges::find(added, backup) != added.end() &&
        std::ranges::find(m_backups, backup) == m_backups.end()) {
      m_backups.push_back(backup);
    }
  }
  return true;
}

const std::vector<std::unique_ptr<ImageItem>>& Selection::photosOf(BackupModel& backup) const {
  backup.setWantsOtherMedia(m_wantsAllMedia);
  const OtherMedia others = backup.otherMedia();
  if (!m_wantsAllMedia && !others.isEmpty()) {
    printNote(others.subject() + " left out of " + backup.path() + "; see --media");
  }
  return backup.imageItems();
}

std::optional<Selection> selectOneBackup(const BackupNames& names) {
  std::optional<Selection> selection = Selection::initWithNames(names);
  if (selection && selection->backups().size() > 1) {
    printMessage("several backups in " + selection->path() + "; name one of them");
  }
  return selection && selection->backups().size() == 1 ? std::move(selection) : std::nullopt;
}

bool tellOfSearch(const BackupSearchResult& result) {
  if (result.tooDeep) {
    printNote("some folders lie too deep and were not searched");
  }
  const bool isWhole = !result.diskIsGone && result.unreadable == 0;
  if (!isWhole) {
    printMessage("the disk has gone or fails; backups may be missing");
  }
  return isWhole;
}

std::string_view pathOnDevice(const BackupModel& backup, std::string_view uniquePath) {
  uniquePath.remove_prefix(backup.path().size());
  return uniquePath.substr(uniquePath.starts_with('/') ? 1 : 0);
}

}  // namespace snaplift::cli
