#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "formats/BinaryData.h"

namespace snaplift {
namespace {

TEST(BinaryData, readsIntegersByTheirWidth) {
  struct Case {
    std::vector<std::uint8_t> bytes;
    std::uint64_t number;
    std::int16_t asShort;
    std::int64_t asInt;
    std::uint64_t asUnsigned;
  };
  const std::vector<Case> cases = {
      {{0x7F}, 127, 127, 127, 127},
      {{0x80}, 128, 128, 128, 128},
      {{0xFF}, 255, 255, 255, 255},
      {{0x01, 0x02}, 258, 258, 258, 258},
      {{0x80, 0x00}, 32768, -32768, 32768, 32768},
      {{0xFF, 0xFF}, 65535, -1, 65535, 65535},
      {{0x80, 0, 0, 0}, 2147483648, 0, -2147483648, 2147483648},
      {{0xFF, 0xFF, 0xFF, 0xFE}, 4294967294, -2, -2, 4294967294},
      {{1, 2, 3, 4, 5, 6, 7, 8}, 0x0102030405060708, 0x0708, 0x05060708, 0x05060708},
      {{0, 0, 0, 1, 0xFF, 0, 0, 0}, 0x1FF000000, 0, -16777216, 0xFF000000},
      {{}, 0, 0, 0, 0},
      {{1, 2, 3}, 0, 0, 0, 0},
      {{1, 2, 3, 4, 5}, 0, 0, 0, 0},
      {std::vector<std::uint8_t>(9, 0xFF), 0, 0, 0, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(stringWithHexBytes(c.bytes));
    EXPECT_EQ(number(c.bytes), c.number);
    EXPECT_EQ(bigEndianShort(c.bytes), c.asShort);
    EXPECT_EQ(bigEndianInt(c.bytes), c.asInt);
    EXPECT_EQ(bigEndianUnsignedInt(c.bytes), c.asUnsigned);
  }
}

TEST(BinaryData, digestsAreLowerCaseAndHexBytesUpperCase) {
  EXPECT_EQ(SHA1({}), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
  EXPECT_EQ(SHA1(bytesOf("CameraRollDomain-Media/DCIM/100APPLE/IMG_0001.JPG")),
            "343e26971dfe9c395c425c0ccf799df63ae6261e");
  const std::vector<std::uint8_t> bytes = {0x00, 0x0A, 0xFF};
  EXPECT_EQ(stringWithHexBytes(bytes), "000AFF");
  EXPECT_EQ(stringWithHexBytes({}), "");
}

}  // namespace
}  // namespace snaplift
