#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "formats/ManifestRecord.h"
#include "foundation/Bytes.h"

namespace snaplift {

// Reads a backup's manifest database, "Manifest.mbdb": a six-byte header that nobody checks, then
// the entries one behind the other, without a count, up to the end of the file. It is the one
// reader of that file, for backups of generations 4 and 5.
//
// The whole file is loaded when the reader is made. Records are views into the reader's buffer: who
// keeps records keeps the reader. A file that is missing, unreadable or too short yields no entry,
// and nothing is reported. An entry that the end of the file cuts off is dropped, and with it the
// walk ends; isWhole() then tells. Zeros behind the last entry are padding and end the walk too.
// One thread at a time, until the walk is done; records are then safe from all.
class iOS5MBDBReader {
public:
  // A reader over the file's content; without data where it cannot be read.
  explicit iOS5MBDBReader(const std::string& path);
  // A reader over bytes in memory.
  explicit iOS5MBDBReader(Bytes data);
  // A reader without data, which yields no entry.
  iOS5MBDBReader() = default;

  // After a walk: whether the file could be read and is more than zeros, and its last entry ends
  // where the file or its padding does.
  bool isWhole() const { return m_data.size() >= headerLength && m_end > 0 && !m_isCutOff; }

  // The next entry in file order; nothing at the end, however often it is asked.
  std::optional<ManifestRecord> nextEntry();

  // The entry that starts at `offset`. Afterwards position() is the offset just past it, or the end
  // of the data where no whole entry starts there.
  std::optional<ManifestRecord> dictionaryFromOffset(std::uint64_t offset);

  // The offset of the next entry.
  std::uint64_t position() const { return m_position; }

  // The field readers. Each reads the field that starts at `offset` and moves `offset` past it; a
  // field that does not end within the data is absent and leaves `offset` alone.
  std::optional<std::int64_t> int8fromOffset(std::uint64_t& offset) const;
  std::optional<std::int64_t> int16fromOffset(std::uint64_t& offset) const;
  std::optional<std::int64_t> int32fromOffset(std::uint64_t& offset) const;
  std::optional<std::uint64_t> int64fromOffset(std::uint64_t& offset) const;
  std::optional<std::string> hexStringFromOffset(std::uint64_t& offset) const;
  std::optional<std::string> stringFromOffset(std::uint64_t& offset) const;

private:
  static constexpr std::uint64_t headerLength = 6;

  Bytes m_data;
  std::uint64_t m_position = headerLength;
  std::uint64_t m_end = 0;  // from here on there is nothing but zeros
  bool m_isCutOff = false;
};

}  // namespace snaplift
