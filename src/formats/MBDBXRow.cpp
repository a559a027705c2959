#include "formats/MBDBXRow.h"

#include "formats/BinaryData.h"
#include "formats/ManifestFields.h"
#include "foundation/Digest.h"
#include "foundation/Log.h"

namespace snaplift {
namespace {

// The fields of an entry of the index file.
constexpr std::uint64_t keyOffset = 0, keyWidth = 20;
constexpr std::uint64_t numberOffset = 20, numberWidth = 4;
constexpr std::uint64_t modeOffset = 24, modeWidth = 2;
static_assert(modeOffset + modeWidth == MBDBXRow::indexEntryLength);

MBDBXRow::Type typeFromIndexFile(std::string_view typeHex) {
  if (typeHex == "a1ed")
    return MBDBXRow::SymbolicLink;
  if (typeHex == "41ed")
    return MBDBXRow::Folder;
  if (typeHex == "8180" || typeHex == "81a4")
    return MBDBXRow::RegularFile;
  return MBDBXRow::Other;
}

// An absent text inside a description.
const std::string absentText = "(null)";

}  // namespace

MBDBXRow MBDBXRow::initWithRow(ByteView entry) {
  MBDBXRow row;
  row.m_source = entry;
  row.m_type = typeFromIndexFile(row.typeHex().value_or(std::string()));
  return row;
}

MBDBXRow MBDBXRow::initWithRecord(const ManifestRecord& record) {
  MBDBXRow row;
  row.m_source = record;
  row.setTypeFromMode(record.mode());
  if (record.filelength() != 0) {
    row.m_type = RegularFile;  // only a file has content, whatever its mode says
  }
  return row;
}

std::optional<ByteView> MBDBXRow::indexField(std::uint64_t offset, std::uint64_t width) const {
  const ByteView* entry = std::get_if<ByteView>(&m_source);
  return entry ? manifestFields::bytesFromOffset(*entry, offset, width) : std::nullopt;
}

std::optional<std::string> MBDBXRow::hash() const {
  if (record()) {
    return record()->filename();
  }
  const auto key = indexField(keyOffset, keyWidth);
  return key ? std::optional(hexText(*key, HexCase::Lower)) : std::nullopt;
}

std::uint32_t MBDBXRow::index() const {
  const auto number = indexField(numberOffset, numberWidth);
  return static_cast<std::uint32_t>(bigEndianUnsignedInt(number.value_or(ByteView())));
}

std::optional<std::string> MBDBXRow::typeHex() const {
  const auto mode = indexField(modeOffset, modeWidth);
  return mode ? std::optional(hexText(*mode, HexCase::Lower)) : std::nullopt;
}

std::string_view MBDBXRow::domain() const {
  return record() ? record()->domain() : std::string_view();
}

std::string_view MBDBXRow::path() const {
  return record() ? record()->path() : std::string_view();
}

std::string MBDBXRow::uniquePath() const {
  return record() ? record()->uniquePath() : std::string();
}

Instant MBDBXRow::modificationDate() const {
  return record() ? record()->modificationDate() : Instant();
}

std::uint64_t MBDBXRow::filelength() const {
  return record() ? record()->filelength() : 0;
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
  const auto known = [this](const std::string& text) { return record() ? text : absentText; };
  return "MBDBXRow: {hash: " + hash().value_or(absentText) +
         ", date: " + known(defaultDateText(modificationDate())) + ", type " +
         typeHex().value_or(absentText) + ", type: " + std::to_string(m_type) +
         ", domain: " + known(std::string(domain())) + ", path: " + known(std::string(path())) +
         ", uniquePath: " + known(uniquePath()) + "}";
}

}  // namespace snaplift
