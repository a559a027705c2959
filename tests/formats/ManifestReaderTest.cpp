#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/iOS5MBDBReader.h"
#include "samples/ManifestWriter.h"

namespace snaplift {
namespace {

using samples::ManifestEntry;
using testing::ElementsAre;
using testing::Optional;
using testing::SizeIs;
using testing::UnorderedElementsAre;
using testing::VariantWith;

iOS5MBDBReader readerOver(std::string_view bytes) {
  return iOS5MBDBReader(Bytes::copyOf(bytesOf(bytes)));
}

iOS5MBDBReader readerOver(const std::vector<ManifestEntry>& entries) {
  return readerOver(samples::manifestDatabase(entries));
}

std::vector<std::string> pathsOf(std::string_view bytes) {
  iOS5MBDBReader reader = readerOver(bytes);
  std::vector<std::string> paths;
  while (const auto record = reader.nextEntry()) {
    paths.emplace_back(record->path());
  }
  EXPECT_FALSE(reader.nextEntry());
  return paths;
}

// The bytes of one entry, written out by hand.
const std::string workedExample =
    std::string("\x00\x0BMediaDomain", 13) + std::string("\x00\x05", 2) + "a.jpg" + "\xFF\xFF" +
    std::string("\x00\x02\xAB\xCD", 4) + "\xFF\xFF" + "\x81\xA4" + std::string(16, '\x5A') +
    std::string("\0\0\0\1\0\0\0\2\0\0\0\3", 12) + std::string("\0\0\0\0\0\0\x10\0", 8) + "\x04" +
    "\x01" + std::string("\x00\x16", 2) + "com.apple.assetsd.UUID" +
    std::string("\x00\x02\x01\xFF", 4);

TEST(ManifestReader, readsTheWorkedExample) {
  ASSERT_EQ(workedExample.size(), 96u);
  iOS5MBDBReader reader = readerOver("header" + workedExample);
  EXPECT_EQ(reader.position(), 6u);
  const auto record = reader.nextEntry();
  ASSERT_TRUE(record);
  EXPECT_EQ(reader.position(), 102u);
  EXPECT_EQ(record->domain(), "MediaDomain");
  EXPECT_EQ(record->path(), "a.jpg");
  EXPECT_EQ(record->linkTarget(), "");
  EXPECT_EQ(record->dataHash(), "ABCD");
  EXPECT_EQ(record->something(), "");
  EXPECT_EQ(record->mode(), 129);
  EXPECT_EQ(record->mode2(), 164);
  EXPECT_EQ(record->creationDate(), instantFromUnixTime(1));
  EXPECT_EQ(record->modificationDate(), instantFromUnixTime(2));
  EXPECT_EQ(record->addedDate(), instantFromUnixTime(3));
  EXPECT_EQ(record->filelength(), 4096u);
  EXPECT_EQ(record->something2(), 4);
  EXPECT_THAT(record->keys(),
              UnorderedElementsAre("domain", "path", "linkTarget", "dataHash", "something", "mode",
                                   "mode2", "something2", "filelength", "creationDate",
                                   "modificationDate", "addedDate", "com.apple.assetsd.UUID"));
  for (const std::string_view key : record->keys()) {
    EXPECT_TRUE(record->valueForKey(key)) << key;
  }
  EXPECT_FALSE(record->valueForKey("uniquePath"));
  EXPECT_FALSE(reader.nextEntry());
  for (const std::uint64_t offset : {std::uint64_t{7}, std::uint64_t{103}, ~std::uint64_t{0}}) {
    EXPECT_FALSE(reader.dictionaryFromOffset(offset)) << offset;
    EXPECT_FALSE(reader.nextEntry()) << offset;
  }
  EXPECT_EQ(reader.dictionaryFromOffset(6)->path(), "a.jpg");
  EXPECT_EQ(reader.position(), 102u);

  std::uint64_t offset = 6;  // field by field
  EXPECT_EQ(reader.stringFromOffset(offset), "MediaDomain");
  EXPECT_EQ(reader.stringFromOffset(offset), "a.jpg");
  EXPECT_EQ(reader.hexStringFromOffset(offset += 2), "ABCD");  // behind two bytes for "absent"
  EXPECT_EQ(reader.int16fromOffset(offset += 2), 0x81A4);
  EXPECT_EQ(reader.int64fromOffset(offset), 0x5A5A5A5A5A5A5A5AU);
  EXPECT_EQ(reader.int32fromOffset(offset += 8), 1);
  EXPECT_EQ(reader.int8fromOffset(offset += 16), 4);
  EXPECT_EQ(offset, 73u);
  offset = 101;
  EXPECT_FALSE(reader.int16fromOffset(offset) || reader.stringFromOffset(offset));
  EXPECT_EQ(offset, 101u);
}

TEST(ManifestReader, readsPropertiesOfEveryKind) {
  const std::string binary("\x00\xFF\n\x80", 4);
  iOS5MBDBReader reader = readerOver(std::vector{
      ManifestEntry{.domain = "D",
                    .path = "own",
                    .dataHash = "\x01",
                    .properties = {{"com.apple.assetsd.UUID", std::string(16, '\xAB')},
                                   {"com.apple.installd.static_usage", std::string("\0\x0F", 2)},
                                   {"binary", binary},
                                   {"twice", "first"},
                                   {"twice", "last"},
                                   {"path", "replaced"},
                                   {"domain", "E"},
                                   {"linkTarget", "elsewhere"},
                                   {"dataHash", "text"},
                                   {"mode", "ignored"},
                                   {"something", "ignored"}}}});
  const auto record = reader.nextEntry();
  ASSERT_TRUE(record);
  const auto textUnder = [&](std::string_view key) {
    const auto value = record->valueForKey(key);
    return value && std::holds_alternative<std::string>(*value) ? std::get<std::string>(*value)
                                                                : "(no text)";
  };
  EXPECT_EQ(textUnder("com.apple.assetsd.UUID"), "ABABABABABABABABABABABABABABABAB");
  EXPECT_EQ(textUnder("com.apple.installd.static_usage"), "000F");
  EXPECT_EQ(textUnder("binary"), binary);
  EXPECT_EQ(textUnder("twice"), "last");
  EXPECT_EQ(textUnder("path"), "replaced");
  EXPECT_EQ(record->path(), "replaced");
  EXPECT_EQ(record->domain(), "E");
  EXPECT_EQ(record->linkTarget(), "elsewhere");
  EXPECT_EQ(record->dataHash(), "text");
  EXPECT_EQ(textUnder("something"), "");
  EXPECT_THAT(record->valueForKey("mode"), Optional(VariantWith<std::uint64_t>(0x81)));
  EXPECT_EQ(record->properties().size(), 11u);
  EXPECT_EQ(record->properties()[3].second, "first");
}

TEST(ManifestReader, takesTheOneFieldThatAPropertyReplaces) {
  for (const char* key : {"domain", "path", "linkTarget", "dataHash"}) {
    iOS5MBDBReader reader = readerOver(std::vector{
        ManifestEntry{.domain = "D", .path = "own", .properties = {{key, "replaced"}}}});
    const auto record = reader.nextEntry();
    ASSERT_TRUE(record);
    const std::string texts[] = {std::string(record->domain()), std::string(record->path()),
                                 std::string(record->linkTarget()), record->dataHash()};
    EXPECT_EQ(std::ranges::count(texts, "replaced"), 1) << key;
  }
}

TEST(ManifestReader, readsFieldsOfTheGreatestLengthAndSignedTimes) {
  const auto longest = [](char c) { return std::string(65533, c) + '\0'; };
  ManifestEntry entry{.domain = longest('d'),
                      .path = longest('p'),
                      .linkTarget = longest('l'),
                      .dataHash = longest('\xAB'),
                      .something = longest('s'),
                      .creationDate = 0x80000000,
                      .modificationDate = 0xFFFFFFFF,
                      .addedDate = 0x7FFFFFFF};
  for (int i = 0; i < 255; ++i) {
    entry.properties.emplace_back("name" + std::to_string(i), std::to_string(i) + '\0');
  }
  entry.properties[254].second = longest('v');
  iOS5MBDBReader reader = readerOver(std::vector{entry, ManifestEntry{.path = "next"}});
  const auto record = reader.nextEntry();
  ASSERT_TRUE(record);
  EXPECT_EQ(record->domain(), entry.domain);
  EXPECT_EQ(record->path(), entry.path);
  EXPECT_EQ(record->linkTarget(), entry.linkTarget);
  EXPECT_EQ(record->dataHash().size(), 2 * entry.dataHash->size());
  EXPECT_EQ(record->something(), entry.something);
  EXPECT_EQ(rfc3339Text(record->creationDate()), "1901-12-13T20:45:52Z");
  EXPECT_EQ(rfc3339Text(record->modificationDate()), "1969-12-31T23:59:59Z");
  EXPECT_EQ(rfc3339Text(record->addedDate()), "2038-01-19T03:14:07Z");
  EXPECT_EQ(record->properties().size(), 255u);
  for (const auto& [name, value] : entry.properties) {
    EXPECT_THAT(record->valueForKey(name), Optional(VariantWith<std::string>(value))) << name;
  }
  EXPECT_EQ(record->keys().size(), 12u + 255u);
  EXPECT_EQ(reader.nextEntry()->path(), "next");
}

TEST(ManifestReader, dropsTheEntryThatTheEndCutsOff) {
  const std::vector<ManifestEntry> entries = {
      {.domain = "D", .path = "one"},
      {.domain = "D", .path = "two", .properties = {{"name", "value"}, {"", ""}}},
      {.domain = "D", .path = "three", .linkTarget = "t"}};
  const std::string whole = samples::manifestDatabase(entries);
  const std::size_t endOfOne = samples::manifestDatabase({entries[0]}).size();
  const std::size_t endOfTwo = samples::manifestDatabase({entries[0], entries[1]}).size();
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    const int expected = (length >= endOfOne) + (length >= endOfTwo) + (length == whole.size());
    EXPECT_THAT(pathsOf(whole.substr(0, length)), SizeIs(expected)) << length;
  }
  const auto isWhole = [](const std::string& bytes) {
    iOS5MBDBReader reader = readerOver(bytes);
    while (reader.nextEntry()) {
    }
    return reader.isWhole();
  };
  EXPECT_TRUE(isWhole(whole));
  EXPECT_FALSE(isWhole(whole.substr(0, whole.size() - 1)));
  EXPECT_FALSE(isWhole(whole.substr(0, 5)));
  EXPECT_FALSE(isWhole(std::string(200, '\0')));
  // What looks like entries without a name is padding.
  for (const std::size_t zeros : {1, 49, 50, 4096}) {
    EXPECT_EQ(pathsOf(whole + std::string(zeros, '\0')).size(), 3u);
    EXPECT_TRUE(isWhole(whole + std::string(zeros, '\0')));
    EXPECT_FALSE(isWhole(whole + std::string(zeros, '\0') + "x"));
  }
}

TEST(ManifestReader, believesNoLengthBeyondTheEnd) {
  // A domain of 65,534 bytes in a file of 300; an entry that promises 255 properties and has none.
  EXPECT_THAT(pathsOf("header\xFF\xFE" + std::string(300, 'x')), ElementsAre());
  std::string promising = "header" + workedExample.substr(0, 96 - 24 - 4 - 1);
  EXPECT_THAT(pathsOf(promising + "\xFF"), ElementsAre());
}

}  // namespace
}  // namespace snaplift
