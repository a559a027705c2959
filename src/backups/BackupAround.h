#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace snaplift {

// Whether `folder` is a backup to whoever wants to write: it holds an info.plist beside a manifest.
bool isBackupFolder(const std::string& folder);

// The backup that `folder` is, or lies in, into which therefore nothing is written; empty where
// there is none. A backup is one of `backupFolders`, or any folder that isBackupFolder().
//
// `folder` is absolute and without links (std::filesystem::canonical). It and all folders above it
// are compared by device and inode, so that no other spelling of a path gets around it.
std::string backupAround(std::filesystem::path folder,
                         const std::vector<std::string>& backupFolders = {});

// Keeps the temporary folder of the process out of backups. To be called as a program starts.
void keepTemporaryFolderOutOfBackups();

}  // namespace snaplift
