#pragma once

#include <memory>
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
  // The bytes themselves, where they stand in a property list and not in a file of their own.
  // Shared, because lists of records are sorted and copied.
  std::shared_ptr<const Bytes> data;

  // The folder joined with the path: the file's identity in its backup.
  std::string uniquePath() const { return joinPath(backupFolder, path); }
};

}  // namespace snaplift
