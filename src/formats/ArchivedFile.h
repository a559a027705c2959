#pragma once

#include <cstdint>
#include <optional>

#include "foundation/Bytes.h"

namespace snaplift {

// What a record of "Manifest.db" says of its file. The record is a keyed archive: a binary property
// list whose objects refer to one another by number. What it lacks, or has in another form, is
// absent.
struct ArchivedFile {
  std::optional<std::uint64_t> size;  // in bytes
  std::optional<std::int64_t> birth;  // seconds since 1970
  std::optional<std::int64_t> lastModified;
  std::optional<std::uint64_t> mode;  // Unix mode with its type bits

  // Never fails: of bytes that are no such archive everything is absent.
  static ArchivedFile fromArchive(ByteView archive);
};

}  // namespace snaplift
