#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "foundation/Bytes.h"
#include "foundation/Digest.h"
#include "foundation/Time.h"

namespace snaplift {

// What a record holds under a key.
using ManifestValue = std::variant<std::string, std::uint64_t, Instant>;

// One entry of a manifest database: one file, folder or link that the device backed up.
//
// A manifest may have a million entries, so a record is no map but a 24-byte view of the entry's
// bytes: texts, numbers and the content file's name are made when they are asked for. It is valid
// as long as the buffer that it was read from, and cheap to copy. It never changes once it stands
// in an index, and reading it from several threads is safe.
//
// An entry's extended properties share the record's key space. A property called "domain", "path",
// "linkTarget" or "dataHash" replaces the entry's own field; one called like any other fixed key
// has no effect. Of two properties of one name the last counts.
class ManifestRecord {
public:
  // The record of the entry that starts at `offset` of `data`; `offset` moves past the entry.
  // Nothing, and `offset` as it was, where the entry does not end within `data`.
  static std::optional<ManifestRecord> fromOffset(ByteView data, std::uint64_t& offset);

  // Texts are the bytes that stand in the manifest (UTF-8 in practice, NUL bytes possible); an
  // absent one is empty.
  std::string_view domain() const { return text(Domain, "domain"); }
  std::string_view path() const { return text(Path, "path"); }
  std::string_view linkTarget() const { return text(LinkTarget, "linkTarget"); }
  std::string_view something() const { return textOf(field(Something)); }
  std::string dataHash() const;  // upper-case hexadecimal digits

  // The entry's 16-bit Unix mode in two parts: the high byte and the low byte.
  std::uint8_t mode() const { return fixedPart()[0]; }
  std::uint8_t mode2() const { return fixedPart()[1]; }
  std::uint8_t something2() const;
  std::uint64_t filelength() const;  // of the content, in bytes

  // Whole seconds, read as signed 32-bit counts: they reach from 1901 to 2038.
  Instant creationDate() const;
  Instant modificationDate() const;
  Instant addedDate() const;

  // The extended properties in file order, with values as their keys read them: text, or upper-case
  // hexadecimal digits for the two names whose values are binary.
  std::vector<std::pair<std::string_view, std::string>> properties() const;

  // The digest that names the entry's content file in the backup folder: SHA-1 of domain, "-" and
  // path. Computed at each call.
  Sha1Digest contentName() const;

  // Places the record in a backup. From then on it has the keys "filename" and "uniquePath".
  // `backupFolder` is not copied and must outlive the record.
  void setBackupFolder(const std::string* backupFolder) { m_backupFolder = backupFolder; }

  // The name of the content file, 40 lower-case hexadecimal digits; and the backup folder joined
  // with the path, the entry's identity in its backup. Empty before setBackupFolder().
  std::string filename() const;
  std::string uniquePath() const;

  // The value under a fixed key, a property's name, "filename" or "uniquePath".
  std::optional<ManifestValue> valueForKey(std::string_view key) const;

  // Every key that the record answers to: the twelve fixed ones, the properties' names, and the two
  // of a record that is placed in a backup. Each once, in no particular order.
  std::vector<std::string_view> keys() const;

private:
  enum Field { Domain, Path, LinkTarget, DataHash, Something };

  ManifestRecord(ByteView entry, std::uint64_t fixedOffset, bool overridden);

  ByteView entry() const { return {m_entry, m_size}; }
  ByteView fixedPart() const;
  ByteView field(Field wanted) const;
  std::string_view text(Field wanted, std::string_view key) const;
  std::optional<ByteView> property(std::string_view name) const;
  template <class Visitor>
  void visitProperties(Visitor visit) const;

  const std::uint8_t* m_entry;
  std::uint32_t m_size;              // at most 5 + 2 * 255 fields of 65,536 bytes each
  std::uint32_t m_fixedOffset : 31;  // where the fields of fixed width begin
  std::uint32_t m_overridden : 1;    // a property replaces one of the entry's own fields
  const std::string* m_backupFolder = nullptr;
};

static_assert(sizeof(ManifestRecord) <= 24);

}  // namespace snaplift
