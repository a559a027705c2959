#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "formats/ManifestRecord.h"
#include "foundation/Bytes.h"
#include "foundation/Time.h"

namespace snaplift {

// One entry of a generation-4 backup: a file, folder or link with its type, its content file's name
// and its identity. Rows are made from the manifest database (by MBDBXReader) or from a 26-byte
// entry of the index file "Manifest.mbdx"; the two know different things, and what a row does not
// know is absent.
//
// A manifest may have a million entries, so a row is a view of what it is made of: valid as long as
// the reader of the manifest, or the bytes of the index file. Reading a row from several threads is
// safe.
class MBDBXRow {
public:
  enum Type : std::int32_t { Folder = 0, RegularFile = 1, SymbolicLink = 2, Other = 3 };

  // The length of an entry of the index file: a 20-byte digest, a 4-byte number, a 2-byte mode.
  static constexpr std::size_t indexEntryLength = 26;

  // A row without entry data: type Other, index 0, no hash.
  MBDBXRow() = default;
  // A row from an entry of the index file. Bytes that are missing at its end read as absent.
  static MBDBXRow initWithRow(ByteView entry);
  // A row of the manifest database. `record` must be placed in a backup. May write one line to the
  // system log, for a mode that nobody knows.
  static MBDBXRow initWithRecord(const ManifestRecord& record);

  // The name of the content file in the backup folder: 40 lower-case hexadecimal digits.
  std::optional<std::string> hash() const;
  // The number that the index file gives the entry; 0 for a row of the manifest.
  std::uint32_t index() const;
  Type type() const { return m_type; }
  void setType(Type type) { m_type = type; }
  // The two mode bytes of an index-file entry as four lower-case digits; absent for other rows.
  std::optional<std::string> typeHex() const;

  // What the row is made of; null for a row that is not of the manifest.
  const ManifestRecord* record() const { return std::get_if<ManifestRecord>(&m_source); }

  // Empty, and the start of 1970, for a row that is not of the manifest.
  std::string_view domain() const;
  std::string_view path() const;
  std::string uniquePath() const;
  Instant modificationDate() const;
  std::uint64_t filelength() const;

  // Sets the type by a Unix mode, either its high byte alone or whole. A high byte of 0xA1 counts
  // as a regular file, the whole mode of a link as a link. A mode that is neither gives Other and
  // the log line "OTHER! %u for path: %@".
  void setTypeFromMode(std::uint32_t mode);

  // "MBDBXRow: {hash: …, date: …, type …, type: …, domain: …, path: …, uniquePath: …}".
  std::string description() const;

private:
  std::optional<ByteView> indexField(std::uint64_t offset, std::uint64_t width) const;

  std::variant<std::monostate, ManifestRecord, ByteView> m_source;  // the last: of the index file
  Type m_type = Other;
};

static_assert(sizeof(MBDBXRow) <= 40);

}  // namespace snaplift
