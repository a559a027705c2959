#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
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

// Asks for everything that hangs on the value, up to `budget` values.
void visit(PropertyListValue value, std::size_t& budget) {
  if (budget == 0) {
    return;
  }
  --budget;
  value.kind();
  value.string();
  value.data();
  value.date();
  value.valueForKey("Domain");
  for (std::size_t i = 0; i < value.count() && budget > 0; ++i) {
    visit(value.at(i), budget);
  }
  for (const auto& [key, member] : value.entries()) {
    key.equals("Domain");
  }
}

void visit(const std::optional<PropertyList>& list) {
  std::size_t budget = 10'000;
  if (list) {
    visit(list->root(), budget);
  }
}

TEST(PropertyListDamage, stopsAtTheDepthLimit) {
  for (const unsigned depth : {511U, 512U, 513U, 60'000U}) {
    Raw raw;
    std::string xml;
    for (unsigned i = 1; i < depth; ++i) {
      raw.add(raw.array({i}));
    }
    raw.add(raw.array({}));
    for (const char* tag : {"<array>", "</array>"}) {
      for (unsigned i = 0; i < depth; ++i) {
        xml += tag;
      }
    }
    for (const std::string& list : {descriptionOf(raw), descriptionOf(xmlDocument(xml))}) {
      EXPECT_EQ(std::ranges::count(list, '('), std::min(depth, 512U));
    }
  }
}

TEST(PropertyListDamage, takesCyclesApartAndReadsTheRest) {
  Raw raw;
  raw.objects = {
      raw.dictionary({1, 2, 3}, {0, 4, 5}),  // holds itself,
      Raw::ascii("self"),
      Raw::ascii("other"),
      Raw::ascii("text"),
      raw.array({6, 5, 4}),  // an array that holds itself and
      raw.dictionary({3}, {7}),
      raw.array({4, 0, 5}),  // one that holds both of its owners
      Raw::ascii("readable"),
  };
  const std::string held = "dictionary(string text: string readable, )";
  EXPECT_EQ(descriptionOf(raw),
            "dictionary(string self: absent, string other: array(array(absent, absent, " + held +
                ", ), " + held + ", absent, ), string text: " + held + ", )");
  raw.objects = {raw.array({0, 0})};
  EXPECT_EQ(descriptionOf(raw), "array(absent, absent, )");
}

// The sizes of the following lists are such that work in their square takes hours.

TEST(PropertyListDamage, looksKeysUpInASharedDictionaryInLinearTime) {
  constexpr std::uint64_t count = 300'000;
  Raw raw;
  raw.referenceSize = 3;
  raw.add("");
  raw.add("");
  std::vector<std::uint64_t> keys, values;
  for (std::uint64_t i = 0; i < count; ++i) {
    keys.push_back(raw.add(Raw::ascii(Raw::bigEndian(i, 8))));
    values.push_back(1);
  }
  const std::uint64_t domain = raw.add(Raw::ascii("Domain"));
  const std::uint64_t text = raw.add(Raw::ascii("found"));
  raw.objects[0] = raw.dictionary(keys, values);
  keys.push_back(domain);
  raw.objects[1] = raw.dictionary(keys, std::vector<std::uint64_t>(count + 1, text));
  const auto list = parsed(raw);
  ASSERT_TRUE(list);
  std::uint64_t found = 0;
  for (const auto& [key, value] : list->root().entries()) {
    found += value.valueForKey("Domain").equals("found") ? 1 : 0;
    found += value.valueForKey("Missing").kind() == Kind::Absent ? 1 : 0;
  }
  EXPECT_EQ(found, 2 * count);
}

TEST(PropertyListDamage, sharesALongTextAmongAllWhoReferToIt) {
  constexpr std::uint64_t count = 300'000;
  Raw raw;
  raw.referenceSize = 3;
  raw.add("");
  raw.add(Raw::utf16(std::u16string(count, u'\u20AC')));
  raw.add(Raw::ascii(std::string(count, 'a')));
  std::vector<std::uint64_t> keys(count, 1);
  std::fill(keys.begin(), keys.begin() + count / 2, 2);
  raw.objects[0] = raw.dictionary(keys, keys);
  const auto list = parsed(raw);
  ASSERT_TRUE(list);
  std::size_t size = 0;
  for (const auto& [key, value] : list->root().entries()) {
    size += key.string().value_or("").size() + value.string().value_or("").size();
    EXPECT_FALSE(key.equals("Domain"));
    EXPECT_EQ(list->root().valueForKey("Domain").kind(), Kind::Absent);
  }
  EXPECT_EQ(size, count / 2 * (2 + 6) * count);
}

// A table of many objects, each of which starts two bytes after the one before and reaches to the
// end of the file.
Raw overlapping(const std::string& marker, unsigned count) {
  Raw raw;
  raw.offsetSize = 3;
  std::vector<std::uint64_t> elements(count);
  std::iota(elements.begin(), elements.end(), 1);
  raw.add(raw.array(elements));
  std::vector<std::uint64_t> offsets = {8};
  std::string overlap;
  for (unsigned i = 0; i < count; ++i) {
    offsets.push_back(8 + raw.objects[0].size() + overlap.size());
    overlap += marker;
  }
  raw.add(overlap + std::string(2 * 65536 + 16, '\0'));
  raw.offsets = offsets;
  return raw;
}

TEST(PropertyListDamage, givesOverlappingObjectsNoMoreThanTheFileHolds) {
  constexpr unsigned count = 60'000;
  for (const char* type : {"\xAF", "\xDF", "\x6F"}) {
    const Raw raw = overlapping(std::string(type) + "\x11\xFF\xFF", count);
    const std::string bytes = raw.bytes();
    const auto list = parsed(bytes);
    ASSERT_TRUE(list);
    std::size_t reached = 0;
    std::size_t readable = 0;
    for (std::size_t i = 0; i < list->root().count(); ++i) {
      const PropertyListValue value = list->root().at(i);
      value.valueForKey("Domain");
      reached += std::max(value.count(), value.string().value_or("").size());
      readable += value.kind() != Kind::Absent ? 1 : 0;
    }
    EXPECT_LE(reached, 3 * bytes.size());
    EXPECT_GT(readable, 0U);
    EXPECT_LT(readable, count);
  }
}

TEST(PropertyListDamage, survivesEveryTruncation) {
  Raw raw;
  raw.objects = {raw.dictionary({1, 2, 3}, {4, 5, 6}),
                 Raw::ascii("Domain"),
                 Raw::utf16(u"a key of more than fifteen units"),
                 Raw::ascii("Data"),
                 raw.array({7, 8, 1, 2}),
                 Raw::date(1),
                 Raw::data(std::string(40, 'x')),
                 Raw::integer(1, 16),
                 std::string("\x23").append(8, '\0')};
  const std::string bytes = raw.bytes();
  ASSERT_TRUE(parsed(bytes));
  const std::string trailer = bytes.substr(bytes.size() - 32);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_FALSE(parsed(bytes.substr(0, size))) << size;
    // The file with a hole, as after a lost block: what is left has a trailer that lies.
    visit(parsed(bytes.substr(0, size) + trailer));
    visit(parsed(bytes.substr(0, size).append(8, '\xFF') + trailer));
    std::string damaged = bytes;
    for (const char byte : {'\x00', '\x5F', '\x7F', '\xDF', '\xFF'}) {
      damaged[size] = byte;
      visit(parsed(damaged));
    }
  }
}

TEST(PropertyListDamage, comparesEveryNumberOfTheTrailerWithTheFile) {
  const auto listWith = [](auto change) {
    Raw raw;
    raw.objects = {raw.array({1, 2, 300, 3}), Raw::ascii("a"), Raw::ascii("b")};
    change(raw);
    return parsed(raw);
  };
  const auto list = listWith([](Raw&) {});
  ASSERT_TRUE(list);
  EXPECT_EQ(description(list->root()), "array(string a, string b, absent, absent, )");
  for (const std::uint64_t number : {std::uint64_t{0}, std::uint64_t{4}, std::uint64_t{1} << 32,
                                     std::uint64_t{1} << 62, highest / 4 + 2, highest}) {
    EXPECT_FALSE(listWith([=](Raw& raw) { raw.count = number; })) << number;
    EXPECT_FALSE(listWith([=](Raw& raw) { raw.table = number; })) << number;
    EXPECT_FALSE(listWith([=](Raw& raw) { raw.root = std::max<std::uint64_t>(number, 3); }))
        << number;
    visit(listWith([=](Raw& raw) { raw.offsets = {8, number, number + 9}; }));
  }
  for (const unsigned size : {0U, 9U, 255U}) {
    std::string bytes = Raw{{Raw::ascii("a")}}.bytes();
    for (const std::size_t fromEnd : {26U, 25U}) {
      std::string damaged = bytes;
      damaged[bytes.size() - fromEnd] = static_cast<char>(size);
      EXPECT_FALSE(parsed(damaged)) << size;
    }
  }
  // The table and its own trailer are no objects.
  EXPECT_FALSE(listWith([](Raw& raw) { raw.offsets = {40, 9, 9}; }));
}

}  // namespace
}  // namespace snaplift
