#include "samples/ManifestWriter.h"

#include <stdexcept>

#include "foundation/Digest.h"
#include "samples/BigEndian.h"

namespace snaplift::samples {
namespace {

constexpr std::string_view databaseHeader("mbdb\5\0", 6);
constexpr std::string_view indexHeader("mbdx\2\0", 6);
constexpr std::uint16_t absentLength = 0xFFFF;
constexpr std::uint32_t mobileUser = 501;

void appendText(std::string& out, std::string_view text) {
  if (text.size() >= absentLength) {
    throw std::length_error("a manifest field holds at most 65,534 bytes");
  }
  appendInteger(out, text.size(), 2);
  out.append(text);
}

void appendText(std::string& out, const std::optional<std::string>& text) {
  if (text) {
    appendText(out, std::string_view(*text));
  } else {
    appendInteger(out, absentLength, 2);
  }
}

Sha1Digest contentDigest(std::string_view domain, std::string_view path) {
  return sha1({bytesOf(domain), bytesOf("-"), bytesOf(path)});
}

}  // namespace

void appendManifestEntry(std::string& out, const ManifestEntry& entry) {
  if (entry.properties.size() > 255) {
    throw std::length_error("a manifest entry holds at most 255 properties");
  }
  appendText(out, std::string_view(entry.domain));
  appendText(out, std::string_view(entry.path));
  appendText(out, entry.linkTarget);
  appendText(out, entry.dataHash);
  appendText(out, entry.something);
  appendInteger(out, entry.mode, 2);
  appendInteger(out, 0, 8);  // the device's own number of the file
  appendInteger(out, mobileUser, 4);
  appendInteger(out, mobileUser, 4);
  appendInteger(out, entry.creationDate, 4);
  appendInteger(out, entry.modificationDate, 4);
  appendInteger(out, entry.addedDate, 4);
  appendInteger(out, entry.filelength, 8);
  appendInteger(out, entry.flag, 1);
  appendInteger(out, entry.properties.size(), 1);
  for (const auto& [name, value] : entry.properties) {
    appendText(out, std::string_view(name));
    appendText(out, std::string_view(value));
  }
}

std::string manifestDatabase(const std::vector<ManifestEntry>& entries) {
  std::string out(databaseHeader);
  for (const ManifestEntry& entry : entries) {
    appendManifestEntry(out, entry);
  }
  return out;
}

std::string manifestIndexFile(const std::vector<ManifestEntry>& entries) {
  std::string out(indexHeader);
  appendInteger(out, entries.size(), 4);
  std::string database;
  for (const ManifestEntry& entry : entries) {
    out.append(textOf(contentDigest(entry.domain, entry.path)));
    appendInteger(out, database.size(), 4);
    appendInteger(out, entry.mode, 2);
    appendManifestEntry(database, entry);
  }
  return out;
}

std::string contentName(std::string_view domain, std::string_view path) {
  return hexText(contentDigest(domain, path), HexCase::Lower);
}

}  // namespace snaplift::samples
