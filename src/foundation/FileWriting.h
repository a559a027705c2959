#pragma once

#include <optional>
#include <string>

#include "foundation/Bytes.h"
#include "foundation/FileError.h"

namespace snaplift {

// The three ways in which the program makes files, and the flush that ends an export. The ways work
// on any file system, also on FAT and exFAT (no links, no permissions, letter case folded), check
// every write and close, give the file the process's ordinary permissions (umask), and are safe to
// call from any number of threads and processes at once, on one folder too. The result is the
// error, absent after success.

// Writes `bytes` into `path`, byte by byte where others can watch. A file that is there is unlinked
// and never written over: its bytes may stand under other names, too. After an error there is no
// file.
[[nodiscard]] std::optional<FileError> writeFile(const std::string& path, ByteView bytes);

// Makes `path` with `bytes`, whole or not at all, and never replaces anything: a name that is taken
// (by a file, a folder, a link, in any letter case where the file system folds it) is the error
// FileError::fileExists.
//
// The bytes go into a hidden part, ".snaplift-<16 digits>.part", which gets its name when it is
// complete. A process that is killed can leave that part behind. On a file system that has neither
// links nor a rename that refuses a taken name (FAT and exFAT through FUSE) the name is claimed by
// an empty file, and the part is renamed over it: a process that is killed between these two system
// calls leaves the empty file.
[[nodiscard]] std::optional<FileError> createFile(const std::string& path, ByteView bytes);

// Whether the process may make files in the folder at `path`; links are followed.
bool isWritableFolder(const std::string& path);

enum class LinkResult { Linked, NameTaken, Impossible };

// Gives the file at `source` the further name `path`: no byte is copied, the name appears with the
// whole file under it, and a name that is taken stays. Impossible between two file systems, on one
// that has no links, and in a folder whose new files get another group or other permissions than
// the source has (set-group-id, default access list); also for whatever else keeps a file from
// being made in the folder, which createFile then reports.
[[nodiscard]] LinkResult linkFile(const std::string& source, const std::string& path);

// Returns when everything that was written so far on the file system of `folder`, by whomever, is
// on its disk: once for a whole export, since waiting for the disk after each photo costs more than
// writing it. The error is that of the disk, which may have come up in the background before, or
// says that the folder is gone. Blocks as long as the disk takes, on a slow stick for a minute.
[[nodiscard]] std::optional<FileError> flushFileSystem(const std::string& folder);

}  // namespace snaplift
