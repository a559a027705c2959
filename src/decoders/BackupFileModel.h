#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Bytes.h"
#include "foundation/Path.h"
#include "foundation/Time.h"

namespace snaplift {

// One file of a generation-3 or generation-2 backup. Valid as long as the decoder that made it.
struct BackupFileModel {
  std::string path;               // within its domain, as the manifest gives it
  std::string_view backupFolder;  // the backup that holds the file; the decoder's
  std::string backupFileName;     // the file with the bytes, inside the backup folder
  std::optional<Instant> modificationDate;
  std::uint64_t filelength = 0;  // in bytes; known in an inventory only
  std::optional<Bytes> data;     // the content, where it is held in memory

  // The folder joined with the path: the file's identity in its backup.
  std::string uniquePath() const { return joinPath(backupFolder, path); }
};

}  // namespace snaplift
