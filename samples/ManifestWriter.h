#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace snaplift::samples {

// One entry of a manifest database, field by field as it stands in the file. The defaults are those
// of a regular file without content. An absent optional is written as the length 0xFFFF, an empty
// one as the length 0. Texts and values are raw bytes; `dataHash` and the values of properties that
// a reader shows as digits are raw bytes too.
struct ManifestEntry {
  std::string domain = {}, path = {};
  std::optional<std::string> linkTarget = {}, dataHash = {}, something = {};
  std::uint16_t mode = 0x81A4;
  std::uint32_t creationDate = 0, modificationDate = 0, addedDate = 0;  // seconds since 1970
  std::uint64_t filelength = 0;
  std::uint8_t flag = 4;
  std::vector<std::pair<std::string, std::string>> properties = {};  // at most 255
};

// Modes of the three kinds of entry.
constexpr std::uint16_t regularFileMode = 0x81A4;
constexpr std::uint16_t folderMode = 0x41ED;
constexpr std::uint16_t linkMode = 0xA1ED;

// Appends the bytes of one entry. Throws std::length_error for a text of 65,535 bytes or more and
// for more than 255 properties, which the format cannot hold.
void appendManifestEntry(std::string& out, const ManifestEntry& entry);

// A whole "Manifest.mbdb": the six-byte header, then the entries in order.
std::string manifestDatabase(const std::vector<ManifestEntry>& entries);

// The "Manifest.mbdx" beside that database, as generation 4 has it: a header with the number of
// entries, then 26 bytes an entry: the raw digest that names its content file, the offset of the
// entry in the database counted from the end of the database's header, and the mode.
std::string manifestIndexFile(const std::vector<ManifestEntry>& entries);

// The name of the file that holds the content of a file of a backup: 40 lower-case hexadecimal
// digits.
std::string contentName(std::string_view domain, std::string_view path);

}  // namespace snaplift::samples
