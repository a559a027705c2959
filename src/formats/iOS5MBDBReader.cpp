#include "formats/iOS5MBDBReader.h"

#include "formats/BinaryData.h"
#include "formats/ManifestFields.h"
#include "foundation/files/File.h"

namespace snaplift {
namespace {

std::optional<std::int64_t> integerFromOffset(ByteView data, std::uint64_t& offset,
                                              std::uint64_t width) {
  const std::optional<ByteView> bytes = manifestFields::bytesFromOffset(data, offset, width);
  return bytes ? std::optional(bigEndianInt(*bytes)) : std::nullopt;
}

}  // namespace

iOS5MBDBReader::iOS5MBDBReader(const std::string& path)
    : iOS5MBDBReader(readFile(path).value_or(Bytes())) {}

iOS5MBDBReader::iOS5MBDBReader(Bytes data) : m_data(std::move(data)), m_end(m_data.size()) {
  while (m_end > 0 && m_data.data()[m_end - 1] == 0) {
    --m_end;
  }
}

std::optional<ManifestRecord> iOS5MBDBReader::nextEntry() {
  return m_position < m_end ? dictionaryFromOffset(m_position) : std::nullopt;
}

std::optional<ManifestRecord> iOS5MBDBReader::dictionaryFromOffset(std::uint64_t offset) {
  const std::optional<ManifestRecord> record = ManifestRecord::fromOffset(m_data, offset);
  m_isCutOff = m_isCutOff || !record;
  m_position = record ? offset : m_data.size();
  return record;
}

std::optional<std::int64_t> iOS5MBDBReader::int8fromOffset(std::uint64_t& offset) const {
  return integerFromOffset(m_data, offset, 1);
}

std::optional<std::int64_t> iOS5MBDBReader::int16fromOffset(std::uint64_t& offset) const {
  return integerFromOffset(m_data, offset, 2);
}

std::optional<std::int64_t> iOS5MBDBReader::int32fromOffset(std::uint64_t& offset) const {
  return integerFromOffset(m_data, offset, 4);
}

std::optional<std::uint64_t> iOS5MBDBReader::int64fromOffset(std::uint64_t& offset) const {
  const std::optional<ByteView> bytes = manifestFields::bytesFromOffset(m_data, offset, 8);
  return bytes ? std::optional(number(*bytes)) : std::nullopt;
}

std::optional<std::string> iOS5MBDBReader::hexStringFromOffset(std::uint64_t& offset) const {
  const std::optional<ByteView> bytes = manifestFields::fieldFromOffset(m_data, offset);
  return bytes ? std::optional(stringWithHexBytes(*bytes)) : std::nullopt;
}

std::optional<std::string> iOS5MBDBReader::stringFromOffset(std::uint64_t& offset) const {
  const std::optional<ByteView> bytes = manifestFields::fieldFromOffset(m_data, offset);
  return bytes ? std::optional<std::string>(textOf(*bytes)) : std::nullopt;
}

}  // namespace snaplift
