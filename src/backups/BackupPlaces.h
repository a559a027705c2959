#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/Sentence.h"

namespace snaplift {

class FolderTree;

// Where backups are found. Nothing here reads more than the names in a few folders.

// The folder that the desktop sync software keeps its backups in, below the user's home folder:
// "Library/Application Support/MobileSync/Backup". Empty where the user has no home folder.
std::string defaultBackupRoot();

// The folder that a person means by `path`: for a file that only backups have ("Info.plist",
// "Manifest.*") the folder that it lies in; else the path itself, without slashes at its end.
std::string folderMeantBy(std::string path);

// Why there is nothing to be seen in a folder, as words for a person: "no such folder: /x", "not a
// folder: /x", "no permission to read the folder: /x". Nothing where it can be read.
std::optional<Sentence> whyFolderCannotBeRead(const std::string& folder);

// Whether a folder holds a file that says that it is a backup, whole or not.
bool looksLikeBackup(const std::string& folder);

// Whether a backup can be read from its disk now, and not only from what the system remembers of
// it. May take as long as the disk does.
bool isBackupReadFromDisk(const std::string& folder);

// The backup roots in known places below the top of `tree`, relative to it: those of a user folder,
// of an application's own folder, and of all users of a disk, as the desktop systems have them.
std::vector<std::string> knownBackupRoots(const FolderTree& tree);

// The mount points of the disks that somebody has connected: those below "/media", "/run/media" and
// "/mnt".
std::vector<std::string> connectedDisks();

}  // namespace snaplift
