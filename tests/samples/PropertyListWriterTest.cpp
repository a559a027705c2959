#include <cstdint>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "samples/PropertyListWriter.h"

using namespace std::string_literals;

namespace snaplift::samples {
namespace {

// The bytes of the first object: what a scalar at the root is written as.
std::string objectBytes(const PlistValue& value) {
  const std::string file = binaryPropertyList(value);
  return file.substr(8, file.size() - 8 - 1 - 32);
}

TEST(BinaryPropertyList, writesADictionaryByteForByte) {
  const PlistValue root = PlistValue::dictionary({{"a", 1}, {"b", PlistValue::array({"a", true})}});
  EXPECT_EQ(binaryPropertyList(root),
            "bplist00"
            "\xD2\x01\x02\x03\x04"  // at 8: two keys, two values
            "\x51\x61"              // at 13
            "\x51\x62"              // at 15
            "\x10\x01"              // at 17
            "\xA2\x01\x05"          // at 19: the text of the first key once more, and
            "\x09"                  // at 22
            "\x08\x0D\x0F\x11\x13\x16"
            "\0\0\0\0\0\0\x01\x01"
            "\0\0\0\0\0\0\0\x06"
            "\0\0\0\0\0\0\0\0"
            "\0\0\0\0\0\0\0\x17"s);
}

TEST(BinaryPropertyList, writesScalars) {
  struct Case {
    PlistValue value;
    std::string bytes;
  };
  for (const Case& c : {
           Case{255, "\x10\xFF"s},
           Case{256, "\x11\x01\x00"s},
           Case{65536, "\x12\x00\x01\x00\x00"s},
           Case{std::int64_t{1} << 32, "\x13\0\0\0\1\0\0\0\0"s},
           Case{-2, "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE"s},
           Case{std::numeric_limits<std::uint64_t>::max(),
                "\x14\0\0\0\0\0\0\0\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s},
           Case{1.5, "\x23\x3F\xF8\0\0\0\0\0\0"s},
           Case{false, "\x08"s},
           Case{instantFromUnixTime(978307201), "\x33\x3F\xF0\0\0\0\0\0\0"s},
           Case{PlistValue::data("\0\1"s), "\x42\0\1"s},
           Case{PlistValue::data(std::string(15, 'x')), "\x4F\x10\x0F" + std::string(15, 'x')},
           Case{"\xC3\xA4", "\x61\x00\xE4"s},
           Case{"\xF0\x9F\x8C\x84", "\x62\xD8\x3C\xDF\x04"s},
       }) {
    EXPECT_EQ(objectBytes(c.value), c.bytes);
  }
  for (const char* damaged : {"\xC3", "\xC3(", "\x80", "\xC0\x80", "\xED\xA0\x80", "\xF8\x88"}) {
    EXPECT_THROW(binaryPropertyList(damaged), std::runtime_error);
  }
}

TEST(BinaryPropertyList, widensReferencesAndOffsets) {
  PlistValue::Array numbers(256, 7);
  const std::string file = binaryPropertyList(numbers);
  EXPECT_EQ(file.substr(8, 8), "\xAF\x11\x01\x00\x00\x01\x00\x02"s);
  EXPECT_EQ(file.substr(file.size() - 26, 10), "\x02\x02\0\0\0\0\0\0\1\1"s);
}

TEST(XmlPropertyList, writesEveryKindOfValue) {
  const PlistValue root = PlistValue::dictionary({
      {"<&>", "a < b\n\xC3\xA4"},
      {"numbers", PlistValue::array({-1, std::numeric_limits<std::uint64_t>::max(), 0.25})},
      {"date", instantFromUnixTime(1318408200, 999'999'999)},
      {"data",
       PlistValue::array({PlistValue::data("f"), PlistValue::data("fo"), PlistValue::data("foo")})},
      {"empty", PlistValue::array({PlistValue::array(), PlistValue::dictionary(), true, ""})},
  });
  EXPECT_EQ(xmlPropertyList(root), R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist SYSTEM "PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>&lt;&amp;&gt;</key>
	<string>a &lt; b
)"
                                   "\xC3\xA4"
                                   R"(</string>
	<key>numbers</key>
	<array>
		<integer>-1</integer>
		<integer>18446744073709551615</integer>
		<real>0.25</real>
	</array>
	<key>date</key>
	<date>2011-10-12T08:30:00Z</date>
	<key>data</key>
	<array>
		<data>
		Zg==
		</data>
		<data>
		Zm8=
		</data>
		<data>
		Zm9v
		</data>
	</array>
	<key>empty</key>
	<array>
		<array/>
		<dict/>
		<true/>
		<string></string>
	</array>
</dict>
</plist>
)");
  EXPECT_THROW(xmlPropertyList("\x01"), std::runtime_error);
}

}  // namespace
}  // namespace snaplift::samples
