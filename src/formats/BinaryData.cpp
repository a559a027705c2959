#include "formats/BinaryData.h"

#include "foundation/Digest.h"

namespace snaplift {

std::string SHA1(ByteView bytes) {
  return hexText(sha1({bytes}), HexCase::Lower);
}

std::uint64_t number(ByteView bytes) {
  switch (bytes.size()) {
    case 1:
    case 2:
    case 4:
    case 8: {
      std::uint64_t value = 0;
      for (const std::uint8_t byte : bytes) {
        value = value << 8 | byte;
      }
      return value;
    }
    default:
      return 0;
  }
}

std::int16_t bigEndianShort(ByteView bytes) {
  return static_cast<std::int16_t>(number(bytes));
}

std::int64_t bigEndianInt(ByteView bytes) {
  return static_cast<std::int32_t>(number(bytes));
}

std::uint64_t bigEndianUnsignedInt(ByteView bytes) {
  return static_cast<std::uint32_t>(number(bytes));
}

std::string stringWithHexBytes(ByteView bytes) {
  return hexText(bytes, HexCase::Upper);
}

}  // namespace snaplift
