#include <future>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "RawPropertyList.h"
#include "foundation/propertylist/PropertyList.h"

namespace snaplift {
namespace {

using Kind = PropertyListValue::Kind;
using Raw = RawPropertyList;

constexpr std::uint64_t highest = std::numeric_limits<std::uint64_t>::max();

// Reads one value from both encodings; empty in one that cannot say it.
void expectValue(const std::string& binary, const std::string& xml,
                 const std::string& expected = "absent") {
  SCOPED_TRACE(testing::PrintToString(binary) + xml);
  const auto check = [&](const std::optional<PropertyList>& list) {
    ASSERT_TRUE(list);
    const PropertyListValue value = list->root().at(0);
    EXPECT_EQ(description(value), expected);
    EXPECT_EQ(description(value), expected);  // a text is kept from the first time
    if (const auto text = value.string()) {
      EXPECT_TRUE(value.equals(*text));
      EXPECT_FALSE(value.equals(std::string(*text) + "a"));
      EXPECT_FALSE(value.equals(std::string(text->size(), 'y') + "y"));
    }
  };
  if (!binary.empty()) {
    Raw raw;
    raw.objects = {raw.array({1}), binary};
    check(parsed(raw));
  }
  if (!xml.empty()) {
    check(parsed(xmlDocument("<array>" + xml + "</array>")));
  }
}

TEST(PropertyList, readsNumbers) {
  expectValue(Raw::integer(0xFF, 1), "<integer>255</integer>", "integer i255 u255 yes");
  expectValue(Raw::integer(0x8000, 2), "<integer> +32768\n</integer>", "integer i32768 u32768 yes");
  expectValue(Raw::integer(0xFFFFFFFF, 4), "<integer>0xffffFFFF</integer>",
              "integer i4294967295 u4294967295 yes");
  expectValue(Raw::integer(0, 8), "<integer>-0</integer>", "integer i0 u0");
  expectValue(Raw::integer(highest, 8), "<integer>-1</integer>", "integer i-1 yes");
  expectValue(Raw::integer(1ULL << 63, 8), "<integer>-0x8000000000000000</integer>",
              "integer i-9223372036854775808 yes");
  expectValue(Raw::integer(highest, 16), "<integer>18446744073709551615</integer>",
              "integer u18446744073709551615 yes");
  expectValue(Raw::integer(7, 16), "<integer>007</integer>", "integer i7 u7 yes");
  expectValue('\x22' + Raw::bigEndian(0xC0200000, 4), "<real>-2.5</real>", "real r-2.5 yes");
  expectValue('\x23' + Raw::bigEndian(0x3FB999999999999A, 8), "<real> +1e-1 </real>",
              "real r0.1 yes");
  expectValue("\x80\x07", "", "uid #7");
  expectValue("\x82\x01\x02\x03", "", "uid #66051");
}

TEST(PropertyList, readsBooleansDatesAndData) {
  expectValue("\x08", "<false/>", "boolean b0");
  expectValue("\x09", "<true></true>", "boolean b1 yes");
  expectValue(Raw::date(340101000), "<date>2011-10-12T08:30:00Z</date>",
              "date 2011-10-12T08:30:00Z");
  expectValue("", "<date>-0044-03-15T12:00:00Z</date>", "date -0044-03-15T12:00:00Z");
  const auto fraction = parsed(Raw{{Raw::date(-0.25)}});
  ASSERT_TRUE(fraction);
  EXPECT_EQ(fraction->root().date(), instantFromUnixTime(978307199, 750'000'000));
  const std::string bytes("\0\xFF<&", 4);
  expectValue(Raw::data(bytes), "<data>\n\tAP\n\t88 Jg==\n</data>", "data " + bytes);
  expectValue(Raw::data(""), "<data/>", "data ");
}

TEST(PropertyList, readsTextsAsUtf8) {
  const std::string longText(300, 'x');
  expectValue(Raw::ascii(""), "<string/>", "string ");
  expectValue(Raw::ascii("a<b"), "<string>a&lt;<![CDATA[b]]></string>", "string a<b");
  expectValue(Raw::ascii(longText), "<string>" + longText + "</string>", "string " + longText);
  expectValue(Raw::ascii("caf\xC3\xA9"), "<string>caf&#xe9;</string>", "string caf\xC3\xA9");
  expectValue(Raw::ascii("\xFF"), "", "string \xFF");
  expectValue(Raw::marker(7, 3) + "\xE2\x82\xAC", "<string>\xE2\x82\xAC</string>",
              "string \xE2\x82\xAC");
  expectValue(Raw::utf16(u"\u20AC\U0001F600a"), "<string>\u20AC&#128512;a</string>",
              "string \u20AC\U0001F600a");
  expectValue(Raw::utf16(u"\xDC00\xD800"), "", "string \uFFFD\uFFFD");
  expectValue(Raw::utf16(u"\xD800x"), "", "string \uFFFDx");
}

TEST(PropertyList, answersAbsentForValuesThatMakeNoSense) {
  expectValue(Raw::date(std::numeric_limits<double>::quiet_NaN()), "<date>2011-10-12</date>");
  expectValue(Raw::date(std::numeric_limits<double>::infinity()),
              "<date>2011-13-12T08:30:00Z</date>");
  expectValue(Raw::date(-1e300), "<date>2011-02-29T08:30:00Z</date>");
  expectValue(Raw::date(9.3e12), "<date>2011-10-12T24:30:00Z</date>");
  expectValue(Raw::date(-9.3e12), "<date>2011-10-12T08:30:0-Z</date>");
  expectValue('\x14' + Raw::bigEndian(1, 8) + Raw::bigEndian(0, 8),
              "<integer>18446744073709551616</integer>");
  expectValue('\x15' + std::string(32, '\0'), "<integer>-0x8000000000000001</integer>");
  expectValue('\x21' + std::string(2, '\0'), "<integer>1.0</integer>");
  expectValue(std::string(1, '\0'), "<integer/>");
  expectValue("\x0F", "<integer>0x</integer>");
  expectValue("\x88" + std::string(9, '\1'), "<real>1,5</real>");
  expectValue("\x90", "<real>+-1</real>");
  expectValue("\xE0", "<data>AAA*</data>");
  expectValue("\xF0", "<data>AA==AA==</data>");
  expectValue(Raw::marker(5, 1000) + "short", "<data>AAAAA</data>");
  expectValue("\x5F\x5F", "<string>a<b>c</b></string>");
  expectValue("\x4F\x14" + std::string(16, '\0'), "<uid>1</uid>");
}

void expectWholeDictionary(const std::optional<PropertyList>& list) {
  ASSERT_TRUE(list);
  const PropertyListValue root = list->root();
  EXPECT_EQ(description(root),
            "dictionary(string b: array(string one, string one, ), string a: string one, "
            "string b: integer i5 u5 yes, string : dictionary(), )");
  EXPECT_EQ(root.valueForKey("b").count(), 2U);
  EXPECT_EQ(root.valueForKey("b").at(2).kind(), Kind::Absent);
  EXPECT_EQ(root.at(2).integer(), 5);
  EXPECT_EQ(root.valueForKey("").kind(), Kind::Dictionary);
  EXPECT_EQ(root.valueForKey("a").valueForKey("a").kind(), Kind::Absent);
  EXPECT_EQ(root.valueForKey("b").valueForKey("b").entries().size(), 0U);
  const PropertyListValue absent = root.valueForKey("c").at(highest).valueForKey("a");
  EXPECT_EQ(description(absent), "absent");
  EXPECT_FALSE(absent.equals("") || absent.count() > 0);
}

TEST(PropertyList, keepsTheOrderOfDictionariesAndTheFirstOfEqualKeys) {
  for (const unsigned width : {1U, 8U}) {  // of the numbers in the file's table
    Raw raw;
    raw.offsetSize = width;
    raw.referenceSize = width;
    raw.objects = {raw.dictionary({1, 2, 1, 3}, {4, 5, 6, 7}),
                   Raw::ascii("b"),
                   Raw::utf16(u"a"),
                   Raw::ascii(""),
                   raw.array({5, 5}),
                   Raw::ascii("one"),
                   Raw::integer(5, 1),
                   raw.dictionary({}, {})};
    expectWholeDictionary(parsed(raw));
  }
  expectWholeDictionary(parsed(xmlDocument(
      "<dict>loose text<string>no key</string><key>b</key><array><string>one</string><string>one"
      "</string><key>no</key></array><!-- --><key>a</key><string>one</string><?pi?><key>b</key>"
      "<integer>5</integer><key/><dict/></dict>")));
}

TEST(PropertyList, isReadBySeveralThreadsAtOnce) {
  Raw raw;
  std::vector<std::uint64_t> keys, values;
  raw.add("");
  for (std::uint64_t i = 0; i < 200; ++i) {
    const std::string digits = std::to_string(i);
    keys.push_back(raw.add(Raw::utf16(u"\u00E9" + std::u16string(digits.begin(), digits.end()))));
    values.push_back(raw.add(Raw::integer(i, 1)));
  }
  raw.objects[0] = raw.dictionary(keys, values);
  const auto list = parsed(raw);
  ASSERT_TRUE(list);
  const auto read = [&list] {
    EXPECT_EQ(list->root().valueForKey("\u00E9199").unsignedInteger(), 199U);
    return description(list->root());
  };
  auto other = std::async(std::launch::async, read);
  EXPECT_EQ(read(), other.get());
}

}  // namespace
}  // namespace snaplift
