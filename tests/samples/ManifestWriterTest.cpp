#include <stdexcept>

#include <gtest/gtest.h>

#include "samples/ManifestWriter.h"

using namespace std::string_literals;

namespace snaplift::samples {
namespace {

TEST(ManifestWriter, writesAnEntryByteForByte) {
  ManifestEntry entry;
  entry.domain = "MediaDomain";
  entry.path = "a.jpg";
  entry.dataHash = "\xAB\xCD";
  entry.creationDate = 1;
  entry.modificationDate = 2;
  entry.addedDate = 3;
  entry.filelength = 4096;
  entry.properties = {{"com.apple.assetsd.UUID", "\x01\xFF"}};
  const std::string expected =
      "\x00\x0BMediaDomain\x00\x05"
      "a.jpg\xFF\xFF\x00\x02\xAB\xCD\xFF\xFF\x81\xA4"
      "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x01\xF5\x00\x00\x01\xF5"
      "\x00\x00\x00\x01\x00\x00\x00\x02\x00\x00\x00\x03"
      "\x00\x00\x00\x00\x00\x00\x10\x00\x04\x01"
      "\x00\x16"
      "com.apple.assetsd.UUID\x00\x02\x01\xFF"s;
  ASSERT_EQ(expected.size(), 96U);
  EXPECT_EQ(manifestDatabase({entry}), "mbdb\x05\x00"s + expected);

  std::string twice = "before";
  appendManifestEntry(twice, entry);
  appendManifestEntry(twice, entry);
  EXPECT_EQ(twice, "before" + expected + expected);
}

TEST(ManifestWriter, tellsAbsentFromEmpty) {
  ManifestEntry absent;
  ManifestEntry empty;
  empty.linkTarget = empty.dataHash = empty.something = "";
  EXPECT_EQ(manifestDatabase({absent}).substr(6, 10), "\0\0\0\0\xFF\xFF\xFF\xFF\xFF\xFF"s);
  EXPECT_EQ(manifestDatabase({empty}).substr(6, 10), std::string(10, '\0'));
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
  ManifestEntry photo;
  photo.domain = "MediaDomain";
  photo.path = "Media/DCIM/100APPLE/IMG_0001.JPG";
  ManifestEntry folder;
  folder.mode = folderMode;
  const std::string index = manifestIndexFile({photo, folder});
  ASSERT_EQ(index.size(), 10U + 2 * 26);
  EXPECT_EQ(index.substr(0, 10), "mbdx\2\0\0\0\0\2"s);
  EXPECT_EQ(index.substr(10, 4), "\x2a\x04\x1b\xfd"s);
  EXPECT_EQ(index.substr(30, 6), "\0\0\0\0\x81\xA4"s);
  // The photo's entry has 2 + 11, 2 + 32 and 3 * 2 bytes of texts, 40 of fixed fields.
  EXPECT_EQ(index.substr(56, 6), "\0\0\0\x5D\x41\xED"s);
}

TEST(ManifestWriter, namesContentByDomainAndPath) {
  EXPECT_EQ(contentName("CameraRollDomain", "Media/DCIM/100APPLE/IMG_0001.JPG"),
            "343e26971dfe9c395c425c0ccf799df63ae6261e");
}

}  // namespace
}  // namespace snaplift::samples
