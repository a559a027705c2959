#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "RawPropertyList.h"
#include "foundation/PropertyList.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Kind = PropertyListValue::Kind;
using Raw = RawPropertyList;

constexpr std::uint64_t highest = std::numeric_limits<std::uint64_t>::max();

// One value in both encodings; empty in one that cannot say it.
struct Encoded {
  std::string binary;
  std::string xml;

  // Calls `check` with the value as read from each.
  void forEach(const std::function<void(PropertyListValue)>& check) const {
    if (!binary.empty()) {
      SCOPED_TRACE("binary " + testing::PrintToString(binary));
      Raw raw;
      raw.objects = {raw.array({1}), binary};
      const auto list = parsed(raw);
      ASSERT_TRUE(list);
      check(list->root().at(0));
    }
    if (!xml.empty()) {
      SCOPED_TRACE(xml);
      const auto list = parsed(xmlDocument("<array>" + xml + "</array>"));
      ASSERT_TRUE(list);
      check(list->root().at(0));
    }
  }
};

TEST(PropertyList, readsIntegers) {
  struct Case {
    Encoded encoded;
    std::optional<std::int64_t> integer;
    std::optional<std::uint64_t> unsignedInteger;
  };
  for (const Case& c :
       {Case{{Raw::integer(0xFF, 1), "<integer>255</integer>"}, 255, 255},
        Case{{Raw::integer(0x8000, 2), "<integer> +32768\n</integer>"}, 32768, 32768},
        Case{
            {Raw::integer(0xFFFFFFFF, 4), "<integer>0xffffFFFF</integer>"}, 4294967295, 4294967295},
        Case{{Raw::integer(0, 8), "<integer>-0</integer>"}, 0, 0},
        Case{{Raw::integer(highest, 8), "<integer>-1</integer>"}, -1, std::nullopt},
        Case{{Raw::integer(1ULL << 63, 8), "<integer>-0x8000000000000000</integer>"},
             std::numeric_limits<std::int64_t>::min(),
             std::nullopt},
        Case{{Raw::integer(highest, 16), "<integer>18446744073709551615</integer>"},
             std::nullopt,
             highest},
        Case{{Raw::integer(7, 16), "<integer>007</integer>"}, 7, 7}}) {
    c.encoded.forEach([&](PropertyListValue value) {
      EXPECT_EQ(value.kind(), Kind::Integer);
      EXPECT_EQ(value.integer(), c.integer);
      EXPECT_EQ(value.unsignedInteger(), c.unsignedInteger);
      EXPECT_EQ(value.boolValue(), c.integer != 0);
      EXPECT_FALSE(value.real() || value.boolean() || value.string() || value.date());
    });
  }
}

TEST(PropertyList, readsRealsBooleansDatesAndData) {
  Encoded{'\x22' + Raw::bigEndian(0xC0200000, 4), "<real>-2.5</real>"}.forEach(
      [](PropertyListValue value) { EXPECT_EQ(value.real(), -2.5); });
  Encoded{'\x23' + Raw::bigEndian(0x3FB999999999999A, 8), "<real> +1e-1 </real>"}.forEach(
      [](PropertyListValue value) {
        EXPECT_EQ(value.kind(), Kind::Real);
        EXPECT_EQ(value.real(), 0.1);
        EXPECT_TRUE(value.boolValue());
        EXPECT_FALSE(value.integer());
      });
  Encoded{"\x08", "<false/>"}.forEach([](PropertyListValue value) {
    EXPECT_EQ(value.kind(), Kind::Boolean);
    EXPECT_EQ(value.boolean(), false);
    EXPECT_FALSE(value.boolValue());
  });
  Encoded{"\x09", "<true></true>"}.forEach([](PropertyListValue value) {
    EXPECT_EQ(value.boolean(), true);
    EXPECT_TRUE(value.boolValue());
    EXPECT_FALSE(value.integer());
  });
  Encoded{Raw::date(340101000), "<date>2011-10-12T08:30:00Z</date>"}.forEach(
      [](PropertyListValue value) {
        EXPECT_EQ(value.kind(), Kind::Date);
        EXPECT_EQ(value.date(), instantFromUnixTime(1318408200));
        EXPECT_FALSE(value.real() || value.boolValue());
      });
  Encoded{Raw::date(-0.25), ""}.forEach([](PropertyListValue value) {
    EXPECT_EQ(value.date(), instantFromUnixTime(978307199, 750'000'000));
  });
  Encoded{"", "<date>-0044-03-15T12:00:00Z</date>"}.forEach([](PropertyListValue value) {
    EXPECT_EQ(rfc3339Text(value.date().value()), "-0044-03-15T12:00:00Z");
  });
  const std::string bytes("\0\xFF<&", 4);
  Encoded{Raw::data(bytes), "<data>\n\tAP\n\t88 Jg==\n</data>"}.forEach(
      [&](PropertyListValue value) {
        EXPECT_EQ(value.kind(), Kind::Data);
        ASSERT_TRUE(value.data());
        EXPECT_EQ(textOf(*value.data()), bytes);
        EXPECT_FALSE(value.string());
      });
  Encoded{Raw::data(""), "<data/>"}.forEach([](PropertyListValue value) {
    ASSERT_TRUE(value.data());
    EXPECT_TRUE(value.data()->empty());
  });
}

TEST(PropertyList, readsTextsAsUtf8) {
  struct Case {
    Encoded encoded;
    std::string text;
  };
  const std::string longText(300, 'x');
  for (const Case& c :
       {Case{{Raw::ascii(""), "<string/>"}, ""},
        Case{{Raw::ascii("a<b"), "<string>a&lt;<![CDATA[b]]></string>"}, "a<b"},
        Case{{Raw::ascii(longText), "<string>" + longText + "</string>"}, longText},
        Case{{Raw::ascii("caf\xC3\xA9"), "<string>caf&#xe9;</string>"}, "caf\xC3\xA9"},
        Case{{Raw::ascii("\xFF"), ""}, "\xFF"},
        Case{{Raw::marker(7, 3) + "\xE2\x82\xAC", "<string>\xE2\x82\xAC</string>"}, "\xE2\x82\xAC"},
        Case{{Raw::utf16(u"\u20AC\U0001F600a"), "<string>\u20AC&#128512;a</string>"},
             "\u20AC\U0001F600a"},
        Case{{Raw::utf16(u"\xDC00\xD800"), ""}, "\uFFFD\uFFFD"},
        Case{{Raw::utf16(u"\xD800x"), ""}, "\uFFFDx"}}) {
    c.encoded.forEach([&](PropertyListValue value) {
      EXPECT_EQ(value.kind(), Kind::String);
      EXPECT_EQ(value.string(), c.text);
      EXPECT_EQ(value.string(), c.text);  // kept from the first time
      EXPECT_TRUE(value.equals(c.text));
      EXPECT_FALSE(value.equals(c.text + "a"));
      EXPECT_FALSE(value.equals(std::string(c.text.size(), 'y') + "y"));
      EXPECT_FALSE(value.data() || value.boolValue());
    });
  }
}

TEST(PropertyList, answersAbsentForValuesThatMakeNoSense) {
  for (const Encoded& encoded :
       {Encoded{Raw::date(std::numeric_limits<double>::quiet_NaN()), "<date>2011-10-12</date>"},
        Encoded{Raw::date(std::numeric_limits<double>::infinity()),
                "<date>2011-13-12T08:30:00Z</date>"},
        Encoded{Raw::date(-1e300), "<date>2011-02-29T08:30:00Z</date>"},
        Encoded{Raw::date(9.3e12), "<date>2011-10-12T24:30:00Z</date>"},
        Encoded{Raw::date(-9.3e12), "<date>2011-10-12T08:30:0-Z</date>"},
        Encoded{'\x14' + Raw::bigEndian(1, 8) + Raw::bigEndian(0, 8),
                "<integer>18446744073709551616</integer>"},
        Encoded{'\x15' + std::string(32, '\0'), "<integer>-0x8000000000000001</integer>"},
        Encoded{'\x21' + std::string(2, '\0'), "<integer>1.0</integer>"},
        Encoded{std::string(1, '\0'), "<integer/>"}, Encoded{"\x0F", "<integer>0x</integer>"},
        Encoded{"\x80\x01", "<real>1,5</real>"}, Encoded{"\x90", "<real>+-1</real>"},
        Encoded{"\xE0", "<data>AAA*</data>"}, Encoded{"\xF0", "<data>AA==AA==</data>"},
        Encoded{Raw::marker(5, 1000) + "short", "<data>AAAAA</data>"},
        Encoded{"\x5F\x5F", "<string>a<b>c</b></string>"},
        Encoded{"\x4F\x14" + std::string(16, '\0'), "<uid>1</uid>"}}) {
    encoded.forEach([](PropertyListValue value) { EXPECT_EQ(value.kind(), Kind::Absent); });
  }
}

void expectWholeDictionary(const std::optional<PropertyList>& list) {
  ASSERT_TRUE(list);
  const PropertyListValue root = list->root();
  EXPECT_EQ(root.kind(), Kind::Dictionary);
  std::vector<std::pair<std::string, Kind>> entries;
  for (const auto& [key, value] : root.entries()) {
    entries.emplace_back(key.string().value_or("?"), value.kind());
  }
  EXPECT_THAT(entries, ElementsAre(Pair("b", Kind::Array), Pair("a", Kind::String),
                                   Pair("b", Kind::Integer), Pair("", Kind::Dictionary)));
  EXPECT_EQ(root.valueForKey("b").count(), 2U);
  EXPECT_EQ(root.valueForKey("b").at(1).string(), "one");
  EXPECT_EQ(root.valueForKey("b").at(2).kind(), Kind::Absent);
  EXPECT_EQ(root.at(2).integer(), 5);
  EXPECT_EQ(root.valueForKey("").kind(), Kind::Dictionary);
  EXPECT_EQ(root.valueForKey("").count(), 0U);
  EXPECT_EQ(root.valueForKey("c").kind(), Kind::Absent);
  EXPECT_EQ(root.valueForKey("a").valueForKey("a").kind(), Kind::Absent);
  EXPECT_EQ(root.valueForKey("b").valueForKey("b").entries().size(), 0U);
  const PropertyListValue absent = root.valueForKey("c").at(highest).valueForKey("a");
  EXPECT_FALSE(absent.string() || absent.integer() || absent.unsignedInteger() || absent.real() ||
               absent.boolean() || absent.date() || absent.data() || absent.boolValue() ||
               absent.equals("") || absent.count() > 0);
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
  const std::uint64_t count = 200;
  raw.add("");
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::string digits = std::to_string(i);
    keys.push_back(raw.add(Raw::utf16(u"\u00E9" + std::u16string(digits.begin(), digits.end()))));
    values.push_back(raw.add(Raw::integer(i, 1)));
  }
  raw.objects[0] = raw.dictionary(keys, values);
  const auto list = parsed(raw);
  ASSERT_TRUE(list);
  const auto read = [&list, count] {
    std::uint64_t i = 0;
    for (const auto& [key, value] : list->root().entries()) {
      EXPECT_EQ(key.string(), "\u00E9" + std::to_string(i));
      EXPECT_EQ(list->root().valueForKey(key.string().value_or("")).unsignedInteger(), i);
      ++i;
    }
    EXPECT_EQ(i, count);
  };
  std::thread other(read);
  read();
  other.join();
}

}  // namespace
}  // namespace snaplift
