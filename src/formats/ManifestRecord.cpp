#include "formats/ManifestRecord.h"

#include <algorithm>
#include <array>

#include "formats/BinaryData.h"
#include "formats/ManifestFields.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

using manifestFields::bytesFromOffset;
using manifestFields::fieldFromOffset;

// The fields of fixed width, by their offset from the first of them, the two mode bytes.
constexpr std::uint64_t creationDateOffset = 18;  // behind two mode bytes and 16 unread ones
constexpr std::uint64_t modificationDateOffset = 22;
constexpr std::uint64_t addedDateOffset = 26;
constexpr std::uint64_t filelengthOffset = 30;
constexpr std::uint64_t something2Offset = 38;
constexpr std::uint64_t propertyCountOffset = 39;
constexpr std::uint64_t fixedPartLength = 40;

constexpr int variableFieldCount = 5;

constexpr std::array<std::string_view, 4> replaceableKeys = {"domain", "path", "linkTarget",
                                                             "dataHash"};
constexpr std::array<std::string_view, 8> lastingKeys = {
    "filelength",       "mode",        "mode2", "something2", "something", "addedDate",
    "modificationDate", "creationDate"};

template <std::size_t size>
bool contains(const std::array<std::string_view, size>& keys, std::string_view key) {
  return std::ranges::find(keys, key) != keys.end();
}

bool hasHexValue(std::string_view propertyName) {
  return propertyName == "com.apple.assetsd.UUID" ||
         propertyName == "com.apple.installd.static_usage";
}

std::string propertyText(std::string_view name, ByteView value) {
  return hasHexValue(name) ? stringWithHexBytes(value) : std::string(textOf(value));
}

Instant timeAt(ByteView fixedPart, std::uint64_t offset) {
  return instantFromUnixTime(bigEndianInt(fixedPart.subspan(offset, 4)));
}

}  // namespace

std::optional<ManifestRecord> ManifestRecord::fromOffset(ByteView data, std::uint64_t& offset) {
  std::uint64_t next = offset;
  for (int i = 0; i < variableFieldCount; ++i) {
    if (!fieldFromOffset(data, next)) {
      return std::nullopt;
    }
  }
  const std::uint64_t fixedOffset = next - offset;
  const std::optional<ByteView> fixed = bytesFromOffset(data, next, fixedPartLength);
  if (!fixed) {
    return std::nullopt;
  }
  bool overridden = false;
  for (int i = 0; i < (*fixed)[propertyCountOffset]; ++i) {
    const std::optional<ByteView> name = fieldFromOffset(data, next);
    if (!name || !fieldFromOffset(data, next)) {
      return std::nullopt;
    }
    overridden = overridden || contains(replaceableKeys, textOf(*name));
  }
  const ByteView entry = data.subspan(offset, next - offset);
  offset = next;
  return ManifestRecord(entry, fixedOffset, overridden);
}

ManifestRecord::ManifestRecord(ByteView entry, std::uint64_t fixedOffset, bool overridden)
    : m_entry(entry.data()),
      m_size(static_cast<std::uint32_t>(entry.size())),
      m_fixedOffset(static_cast<std::uint32_t>(fixedOffset) & 0x7FFFFFFF),
      m_overridden(overridden) {}

ByteView ManifestRecord::fixedPart() const {
  return entry().subspan(m_fixedOffset, fixedPartLength);
}

ByteView ManifestRecord::field(Field wanted) const {
  std::uint64_t offset = 0;
  for (int i = 0; i < wanted; ++i) {
    fieldFromOffset(entry(), offset);
  }
  return fieldFromOffset(entry(), offset).value_or(ByteView());
}

template <class Visitor>
void ManifestRecord::visitProperties(Visitor visit) const {
  std::uint64_t offset = m_fixedOffset + fixedPartLength;
  for (int i = 0; i < fixedPart()[propertyCountOffset]; ++i) {
    const std::string_view name = textOf(fieldFromOffset(entry(), offset).value_or(ByteView()));
    visit(name, fieldFromOffset(entry(), offset).value_or(ByteView()));
  }
}

std::optional<ByteView> ManifestRecord::property(std::string_view name) const {
  std::optional<ByteView> found;
  visitProperties([&](std::string_view candidate, ByteView value) {
    if (candidate == name) {
      found = value;
    }
  });
  return found;
}

std::string_view ManifestRecord::text(Field wanted, std::string_view key) const {
  const std::optional<ByteView> replaced = m_overridden ? property(key) : std::nullopt;
  return textOf(replaced ? *replaced : field(wanted));
}

std::string ManifestRecord::dataHash() const {
  const std::optional<ByteView> replaced = m_overridden ? property("dataHash") : std::nullopt;
  return replaced ? std::string(textOf(*replaced)) : stringWithHexBytes(field(DataHash));
}

std::uint8_t ManifestRecord::something2() const {
  return fixedPart()[something2Offset];
}

std::uint64_t ManifestRecord::filelength() const {
  return number(fixedPart().subspan(filelengthOffset, 8));
}

Instant ManifestRecord::creationDate() const {
  return timeAt(fixedPart(), creationDateOffset);
}

Instant ManifestRecord::modificationDate() const {
  return timeAt(fixedPart(), modificationDateOffset);
}

Instant ManifestRecord::addedDate() const {
  return timeAt(fixedPart(), addedDateOffset);
}

std::vector<std::pair<std::string_view, std::string>> ManifestRecord::properties() const {
  std::vector<std::pair<std::string_view, std::string>> all;
  visitProperties([&](std::string_view name, ByteView value) {
    all.emplace_back(name, propertyText(name, value));
  });
  return all;
}

Sha1Digest ManifestRecord::contentName() const {
  return sha1({bytesOf(domain()), bytesOf("-"), bytesOf(path())});
}

std::string ManifestRecord::filename() const {
  return m_backupFolder ? hexText(contentName(), HexCase::Lower) : std::string();
}

std::string ManifestRecord::uniquePath() const {
  return m_backupFolder ? joinPath(*m_backupFolder, path()) : std::string();
}

std::optional<ManifestValue> ManifestRecord::valueForKey(std::string_view key) const {
  if (m_backupFolder && key == "filename")
    return filename();
  if (m_backupFolder && key == "uniquePath")
    return uniquePath();
  if (key == "filelength")
    return filelength();
  if (key == "mode")
    return std::uint64_t{mode()};
  if (key == "mode2")
    return std::uint64_t{mode2()};
  if (key == "something2")
    return std::uint64_t{something2()};
  if (key == "something")
    return std::string(something());
  if (key == "addedDate")
    return addedDate();
  if (key == "modificationDate")
    return modificationDate();
  if (key == "creationDate")
    return creationDate();
  if (const std::optional<ByteView> value = property(key))
    return propertyText(key, *value);
  if (key == "domain")
    return std::string(domain());
  if (key == "path")
    return std::string(path());
  if (key == "linkTarget")
    return std::string(linkTarget());
  if (key == "dataHash")
    return dataHash();
  return std::nullopt;
}

std::vector<std::string_view> ManifestRecord::keys() const {
  std::vector<std::string_view> all(replaceableKeys.begin(), replaceableKeys.end());
  all.insert(all.end(), lastingKeys.begin(), lastingKeys.end());
  if (m_backupFolder) {
    all.insert(all.end(), {"filename", "uniquePath"});
  }
  visitProperties([&](std::string_view name, ByteView) { all.push_back(name); });
  std::ranges::sort(all);
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

}  // namespace snaplift
