#include "formats/MBDBXRow.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "formats/BinaryData.h"
#include "formats/ManifestFields.h"
#include "foundation/Log.h"

namespace snaplift {
namespace {

MBDBXRow::Type typeFromIndexFile(std::uint16_t mode) {
  switch (mode) {
    case 0xA1ED:
      return MBDBXRow::SymbolicLink;
    case 0x41ED:
      return MBDBXRow::Folder;
    case 0x8180:
    case 0x81A4:
      return MBDBXRow::RegularFile;
    default:
      return MBDBXRow::Other;
  }
}

// An absent text inside a description.
constexpr const char* absentText = "(null)";

}  // namespace

MBDBXRow MBDBXRow::initWithRow(ByteView entry) {
  using manifestFields::bytesFromOffset;
  MBDBXRow row;
  std::uint64_t offset = 0;
  const auto key = bytesFromOffset(entry, offset, std::tuple_size_v<Sha1Digest>);
  const auto number = key ? bytesFromOffset(entry, offset, 4) : std::nullopt;
  const auto mode = number ? bytesFromOffset(entry, offset, 2) : std::nullopt;
  if (key) {
    std::ranges::copy(*key, row.m_key.emplace().begin());
  }
  if (number) {
    row.m_index = static_cast<std::uint32_t>(bigEndianUnsignedInt(*number));
  }
  if (mode) {
    row.m_mode = static_cast<std::uint16_t>(bigEndianUnsignedInt(*mode));
    row.m_type = typeFromIndexFile(*row.m_mode);
  }
  return row;
}

MBDBXRow MBDBXRow::initWithRecord(const ManifestRecord& record) {
  MBDBXRow row;
  row.m_record = record;
  row.setTypeFromMode(record.mode());
  if (record.filelength() != 0) {
    row.m_type = RegularFile;  // only a file has content, whatever its mode says
  }
  return row;
}

std::optional<std::string> MBDBXRow::hash() const {
  if (m_record) {
    return m_record->filename();
  }
  return m_key ? std::optional(hexText(*m_key, HexCase::Lower)) : std::nullopt;
}

std::optional<std::string> MBDBXRow::typeHex() const {
  if (!m_mode) {
    return std::nullopt;
  }
  const std::array bytes = {static_cast<std::uint8_t>(*m_mode >> 8),
                            static_cast<std::uint8_t>(*m_mode & 0xFF)};
  return hexText(bytes, HexCase::Lower);
}

std::string_view MBDBXRow::domain() const {
  return m_record ? m_record->domain() : std::string_view();
}

std::string_view MBDBXRow::path() const {
  return m_record ? m_record->path() : std::string_view();
}

std::string MBDBXRow::uniquePath() const {
  return m_record ? m_record->uniquePath() : std::string();
}

Instant MBDBXRow::modificationDate() const {
  return m_record ? m_record->modificationDate() : Instant();
}

std::uint64_t MBDBXRow::filelength() const {
  return m_record ? m_record->filelength() : 0;
}

void MBDBXRow::setTypeFromMode(std::uint32_t mode) {
  switch (mode) {
    case 0x41:
      m_type = Folder;
      break;
    case 0x81:
    case 0xA1:
    case 0x81A4:
      m_type = RegularFile;
      break;
    case 0xA1ED:
      m_type = SymbolicLink;
      break;
    default:
      m_type = Other;
      systemLog("OTHER! " + std::to_string(mode) + " for path: " + std::string(path()));
  }
}

std::string MBDBXRow::description() const {
  const auto textOrAbsent = [](const std::string& text) {
    return text.empty() ? absentText : text;
  };
  return "MBDBXRow: {hash: " + hash().value_or(absentText) +
         ", date: " + (m_record ? defaultDateText(modificationDate()) : absentText) + ", type " +
         typeHex().value_or(absentText) + ", type: " + std::to_string(m_type) +
         ", domain: " + textOrAbsent(std::string(domain())) +
         ", path: " + textOrAbsent(std::string(path())) +
         ", uniquePath: " + textOrAbsent(uniquePath()) + "}";
}

}  // namespace snaplift
