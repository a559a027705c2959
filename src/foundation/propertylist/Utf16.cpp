#include "foundation/propertylist/Utf16.h"

#include <cstddef>

namespace snaplift {
namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

bool isHighSurrogate(char32_t unit) {
  return (unit & 0xFC00) == 0xD800;
}

bool isLowSurrogate(char32_t unit) {
  return (unit & 0xFC00) == 0xDC00;
}

// The code point at `position`, which moves past it.
char32_t nextCodePoint(ByteView units, std::size_t& position) {
  const auto unitAt = [units](std::size_t at) {
    return static_cast<char32_t>(units[at] << 8 | units[at + 1]);
  };
  const char32_t unit = unitAt(position);
  position += 2;
  if (isHighSurrogate(unit) && position + 2 <= units.size() && isLowSurrogate(unitAt(position))) {
    const char32_t low = unitAt(position);
    position += 2;
    return 0x10000 + ((unit & 0x3FF) << 10) + (low & 0x3FF);
  }
  return isHighSurrogate(unit) || isLowSurrogate(unit) ? replacementCharacter : unit;
}

// Writes the code point to `out`, which has room for four bytes; the number of bytes.
std::size_t encodeUtf8(char32_t point, char* out) {
  const auto byte = [](char32_t value) { return static_cast<char>(value); };
  if (point < 0x80) {
    out[0] = byte(point);
    return 1;
  }
  const std::size_t length = point < 0x800 ? 2 : point < 0x10000 ? 3 : 4;
  for (std::size_t i = length - 1; i > 0; --i) {
    out[i] = byte(0x80 | (point & 0x3F));
    point >>= 6;
  }
  out[0] = byte((0xF00 >> length & 0xFF) | point);
  return length;
}

}  // namespace

std::string utf8FromUtf16BigEndian(ByteView units) {
  std::string text;
  text.reserve(units.size() / 2);
  for (std::size_t position = 0; position + 2 <= units.size();) {
    char bytes[4];
    text.append(bytes, encodeUtf8(nextCodePoint(units, position), bytes));
  }
  return text;
}

bool equalsUtf16BigEndian(ByteView units, std::string_view text) {
  if (units.size() / 2 > text.size()) {
    return false;  // every unit takes a byte at least
  }
  for (std::size_t position = 0; position + 2 <= units.size();) {
    char bytes[4];
    const std::string_view point(bytes, encodeUtf8(nextCodePoint(units, position), bytes));
    if (!text.starts_with(point)) {
      return false;
    }
    text.remove_prefix(point.size());
  }
  return text.empty();
}

}  // namespace snaplift
