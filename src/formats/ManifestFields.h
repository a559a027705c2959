#pragma once

#include <cstdint>
#include <optional>

#include "foundation/Bytes.h"

namespace snaplift {

// The primitives of a manifest's bytes. All of them move `offset` past what they read, and every
// read of a manifest goes through bytesFromOffset(), which alone checks bounds. A field that would
// end past the last byte is absent, and `offset` then stays where the field begins.
namespace manifestFields {

// The next `count` bytes.
inline std::optional<ByteView> bytesFromOffset(ByteView data, std::uint64_t& offset,
                                               std::uint64_t count) {
  if (offset > data.size() || data.size() - offset < count) {
    return std::nullopt;
  }
  const ByteView bytes = data.subspan(offset, count);
  offset += count;
  return bytes;
}

// A field of variable length: a 2-byte big-endian length, then as many bytes. The length 0xFFFF
// marks an absent value; it has no bytes and reads as the empty value.
inline std::optional<ByteView> fieldFromOffset(ByteView data, std::uint64_t& offset) {
  constexpr std::uint64_t absentLength = 0xFFFF;
  std::uint64_t next = offset;
  const std::optional<ByteView> prefix = bytesFromOffset(data, next, 2);
  if (!prefix) {
    return std::nullopt;
  }
  const std::uint64_t length = static_cast<std::uint64_t>((*prefix)[0] << 8 | (*prefix)[1]);
  const std::optional<ByteView> bytes =
      bytesFromOffset(data, next, length == absentLength ? 0 : length);
  if (bytes) {
    offset = next;
  }
  return bytes;
}

}  // namespace manifestFields
}  // namespace snaplift
