#include "foundation/propertylist/PropertyListAssembler.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <utility>

#include "foundation/propertylist/PropertyListBinary.h"

namespace snaplift {
namespace {

using Binary = BinaryPropertyList;

// Values that need no object of their own.
constexpr std::uint32_t absentObject = 0;
constexpr std::uint32_t falseObject = 1;
constexpr std::uint32_t trueObject = 2;

constexpr unsigned referenceSize = 4;
constexpr std::uint8_t integerMarker8 = 0x13;
constexpr std::uint8_t integerMarker16 = 0x14;
constexpr std::uint8_t realMarker8 = 0x23;
constexpr std::uint8_t dateMarker8 = 0x33;

}  // namespace

PropertyListAssembler::PropertyListAssembler(std::size_t expectedSize)
    : m_bytes(expectedSize + 64) {
  std::memcpy(room(8), "bplist00", 8);
  for (const std::uint8_t marker : {Binary::nullMarker, Binary::falseMarker, Binary::trueMarker}) {
    startObject();
    write(marker, 1);
  }
}

void PropertyListAssembler::beginDictionary() {
  m_open.push_back({m_references.size(), true, false});
}

void PropertyListAssembler::beginArray() {
  m_open.push_back({m_references.size(), false, false});
}

void PropertyListAssembler::endContainer() {
  if (m_open.empty()) {
    return;
  }
  if (m_open.back().expectsValue) {
    addAbsent();
  }
  const Container container = m_open.back();
  m_open.pop_back();
  const std::size_t count = m_references.size() - container.firstReference;
  const std::size_t stride = container.isDictionary ? 2 : 1;
  const std::uint32_t object = startObject();
  writeHeader(container.isDictionary ? Binary::Dictionary : Binary::Array, count / stride);
  for (std::size_t first = 0; first < stride; ++first) {
    for (std::size_t i = first; i < count; i += stride) {
      write(m_references[container.firstReference + i], referenceSize);
    }
  }
  m_references.resize(container.firstReference);
  refer(object);
}

void PropertyListAssembler::addKey(std::string_view utf8) {
  if (m_open.empty() || !m_open.back().isDictionary) {
    return;
  }
  if (m_open.back().expectsValue) {
    addAbsent();
  }
  m_references.push_back(startObject());
  writeRun(Binary::Utf8String, bytesOf(utf8));
  m_open.back().expectsValue = true;
}

void PropertyListAssembler::addString(std::string_view utf8) {
  refer(startObject());
  writeRun(Binary::Utf8String, bytesOf(utf8));
}

void PropertyListAssembler::addData(ByteView bytes) {
  refer(startObject());
  writeRun(Binary::Data, bytes);
}

void PropertyListAssembler::addInteger(std::uint64_t bits, bool isNegative) {
  refer(startObject());
  if (!isNegative && bits >> 63 != 0) {
    write(integerMarker16, 1);
    write(0, 8);
  } else {
    write(integerMarker8, 1);
  }
  write(bits, 8);
}

void PropertyListAssembler::addReal(double value) {
  refer(startObject());
  write(realMarker8, 1);
  write(std::bit_cast<std::uint64_t>(value), 8);
}

void PropertyListAssembler::addDate(double seconds) {
  refer(startObject());
  write(dateMarker8, 1);
  write(std::bit_cast<std::uint64_t>(seconds), 8);
}

void PropertyListAssembler::addBoolean(bool value) {
  refer(value ? trueObject : falseObject);
}

void PropertyListAssembler::addAbsent() {
  refer(absentObject);
}

std::optional<Bytes> PropertyListAssembler::finish() {
  while (!m_open.empty()) {
    endContainer();
  }
  if (!m_root || m_used > std::numeric_limits<std::uint32_t>::max()) {
    return std::nullopt;
  }
  const std::size_t table = m_used;
  for (const std::uint32_t offset : m_offsets) {
    write(offset, 4);
  }
  write(0, 6);
  write(4, 1);
  write(referenceSize, 1);
  write(m_offsets.size(), 8);
  write(*m_root, 8);
  write(table, 8);
  m_bytes.resize(m_used);
  return std::move(m_bytes);
}

std::uint32_t PropertyListAssembler::startObject() {
  m_offsets.push_back(static_cast<std::uint32_t>(m_used));
  return static_cast<std::uint32_t>(m_offsets.size() - 1);
}

void PropertyListAssembler::refer(std::uint32_t object) {
  if (m_open.empty()) {
    m_root = m_root.value_or(object);
    return;
  }
  Container& container = m_open.back();
  if (!container.isDictionary || container.expectsValue) {
    m_references.push_back(object);
    container.expectsValue = false;
  }
}

void PropertyListAssembler::writeHeader(std::uint8_t type, std::size_t count) {
  const auto marker = static_cast<std::uint8_t>(type << 4);
  if (count < 15) {
    write(marker | count, 1);
  } else {
    write(marker | 15U, 1);
    write(integerMarker8, 1);
    write(count, 8);
  }
}

void PropertyListAssembler::writeRun(std::uint8_t type, ByteView bytes) {
  writeHeader(type, bytes.size());
  std::copy(bytes.begin(), bytes.end(), room(bytes.size()));
}

void PropertyListAssembler::write(std::uint64_t value, unsigned width) {
  std::uint8_t* out = room(width);
  for (unsigned i = width; i > 0; --i) {
    out[i - 1] = static_cast<std::uint8_t>(value);
    value >>= 8;
  }
}

std::uint8_t* PropertyListAssembler::room(std::size_t size) {
  if (m_bytes.size() - m_used < size) {
    Bytes larger(std::max(2 * m_bytes.size(), m_used + size));
    std::copy_n(m_bytes.data(), m_used, larger.data());
    m_bytes = std::move(larger);
  }
  std::uint8_t* out = m_bytes.data() + m_used;
  m_used += size;
  return out;
}

}  // namespace snaplift
