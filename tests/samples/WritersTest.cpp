// What the tests of the readers take for granted. The layouts and bytes that the writers make are
// what those tests read, with readers that are held to bytes written out by hand.

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/PropertyList.h"
#include "samples/BackupWriter.h"
#include "support/TemporaryTree.h"

using namespace std::string_literals;

namespace snaplift::samples {
namespace {

using testing::UnorderedElementsAre;

// A test in two letter cases, or two encodings, would not notice that it had but one.
TEST(BackupWriter, differsWhereItIsAskedTo) {
  const TemporaryTree tree;
  SampleBackup backup{.files = {{.path = "IMG_0001.JPG", .content = "photo"}}};
  backup.files[0].contentMissing = true;
  backup.lowerCaseNames = true;
  backup.encoding = PropertyListEncoding::Binary;
  writeBackup(tree.path("b"), backup);
  EXPECT_THAT(tree.list("b"),
              UnorderedElementsAre("info.plist", "manifest.plist", "Manifest.mbdb"));
  EXPECT_TRUE(tree.read("b/info.plist").starts_with("bplist00"));
  EXPECT_EQ(tree.read("b/info.plist").find("Product Version"), std::string::npos);
  EXPECT_TRUE(tree.read("b/manifest.plist").starts_with("bplist00"));
  EXPECT_EQ(manifestEntries(backup.files)[0].filelength, 5U);
}

TEST(BackupWriter, complainsWhereItCannotWrite) {
  const TemporaryTree tree;
  tree.write("file", "");
  EXPECT_THROW(writeFile(tree.path("file/below"), "x"), std::runtime_error);
  EXPECT_THROW(writeFile("/dev/full", std::string(1 << 20, 'x')), std::runtime_error);
  EXPECT_THROW(setModificationDate(tree.path("absent"), Instant()), std::runtime_error);
}

TEST(ManifestWriter, refusesWhatTheFormatCannotHold) {
  std::string out;
  ManifestEntry entry;
  entry.path.assign(65534, 'a');
  entry.properties.resize(255);
  EXPECT_NO_THROW(appendManifestEntry(out, entry));
  entry.properties.resize(256);
  EXPECT_THROW(appendManifestEntry(out, entry), std::length_error);
  entry.properties.clear();
  entry.path.push_back('a');
  EXPECT_THROW(appendManifestEntry(out, entry), std::length_error);
}

TEST(ManifestWriter, writesTheIndexBesideTheDatabase) {
  const ManifestEntry photo{.domain = "MediaDomain", .path = "Media/DCIM/100APPLE/IMG_0001.JPG"};
  const std::string index = manifestIndexFile({photo, {.mode = folderMode}});
  ASSERT_EQ(index.size(), 10U + 2 * 26);
  EXPECT_EQ(index.substr(0, 10), "mbdx\2\0\0\0\0\2"s);
  EXPECT_EQ(index.substr(10, 4), "\x2a\x04\x1b\xfd"s);
  EXPECT_EQ(index.substr(30, 6), "\0\0\0\0\x81\xA4"s);
  // The photo's entry has 2 + 11, 2 + 32 and 3 * 2 bytes of texts, 40 of fixed fields.
  EXPECT_EQ(index.substr(56, 6), "\0\0\0\x5D\x41\xED"s);
}

TEST(PropertyListWriter, writesWhatTheReaderReads) {
  const std::string text = "a < b\n\xC3\xA4\xF0\x9F\x8C\x84";
  const Instant date = instantFromUnixTime(1318408200);
  const std::vector<std::int64_t> integers = {0, 255, 256, 65536, std::int64_t{1} << 32, -2};
  const std::vector<std::string> contents = {"", "f", "fo", "\0\xFF"s, std::string(15, 'x')};
  PlistValue::Array numbers = {std::numeric_limits<std::uint64_t>::max()};
  PlistValue::Array data;
  numbers.insert(numbers.end(), integers.begin(), integers.end());
  for (const std::string& content : contents) {
    data.push_back(PlistValue::data(content));
  }
  const PlistValue root = PlistValue::dictionary(
      {{"<&>", text},
       {"numbers", numbers},
       {"data", data},
       {"others", PlistValue::array({true, false, 0.25, date, PlistValue::dictionary(), ""})},
       {"many", PlistValue::Array(256, 7)}});
  for (const auto encoding : {PropertyListEncoding::Xml, PropertyListEncoding::Binary}) {
    const auto list = PropertyList::parse(Bytes::copyOf(bytesOf(propertyList(root, encoding))));
    ASSERT_TRUE(list);
    EXPECT_EQ(list->root().count(), 5U);
    EXPECT_EQ(list->root().valueForKey("<&>").string(), text);
    const PropertyListValue readNumbers = list->root().valueForKey("numbers");
    EXPECT_EQ(readNumbers.at(0).unsignedInteger(), std::numeric_limits<std::uint64_t>::max());
    for (std::size_t i = 0; i < integers.size(); ++i) {
      EXPECT_EQ(readNumbers.at(i + 1).integer(), integers[i]);
    }
    for (std::size_t i = 0; i < contents.size(); ++i) {
      const auto bytes = list->root().valueForKey("data").at(i).data();
      EXPECT_EQ(bytes ? textOf(*bytes) : "(no data)", contents[i]);
    }
    const PropertyListValue others = list->root().valueForKey("others");
    EXPECT_EQ(others.at(0).boolean(), true);
    EXPECT_EQ(others.at(1).boolean(), false);
    EXPECT_EQ(others.at(2).real(), 0.25);
    EXPECT_EQ(others.at(3).date(), date);
    EXPECT_EQ(others.at(4).kind(), PropertyListValue::Kind::Dictionary);
    EXPECT_EQ(others.at(5).string(), "");
    EXPECT_EQ(list->root().valueForKey("many").at(255).integer(), 7);
  }
}

TEST(PropertyListWriter, refusesTextsThatTheEncodingCannotHold) {
  for (const char* damaged : {"\xC3", "\xC3(", "\x80", "\xC0\x80", "\xED\xA0\x80", "\xF8\x88"}) {
    EXPECT_THROW(binaryPropertyList(damaged), std::runtime_error);
  }
  EXPECT_THROW(xmlPropertyList("\x01"), std::runtime_error);
}

}  // namespace
}  // namespace snaplift::samples
