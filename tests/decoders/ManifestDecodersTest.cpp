// Where the decoders of generations 5 and 4 differ from each other.

#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ListedPhotos.h"
#include "decoders/iOS4Decoder.h"
#include "decoders/iOS5Decoder.h"
#include "samples/ManifestWriter.h"
#include "samples/PropertyListWriter.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using samples::ManifestEntry;
using samples::PlistValue;
using testing::ElementsAre;

class ManifestDecoders : public testing::Test {
protected:
  // Writes each entry into both of the domains that the decoders look at.
  void writeManifest(std::vector<ManifestEntry> entries) {
    std::vector<ManifestEntry> doubled;
    for (const char* domain : {"CameraRollDomain", "MediaDomain"}) {
      for (ManifestEntry& entry : entries) {
        entry.domain = domain;
        doubled.push_back(entry);
      }
    }
    m_tree.write("Manifest.mbdb", samples::manifestDatabase(doubled));
  }

  template <class Decoder>
  std::vector<std::string> photos() {
    return listedPhotos<Decoder>(m_tree.root());
  }

  TemporaryTree m_tree;
};

TEST_F(ManifestDecoders, takeTheirPhotosFromTheirOwnDomain) {
  m_tree.write("Manifest.mbdb",
               samples::manifestDatabase(
                   {{.domain = "CameraRollDomain", .path = "five.jpg", .filelength = 1},
                    {.domain = "MediaDomain", .path = "four.jpg", .filelength = 1},
                    {.domain = "mediaDomain", .path = "none.jpg", .filelength = 1}}));
  EXPECT_THAT(photos<iOS5Decoder>(), ElementsAre("five.jpg"));
  EXPECT_THAT(photos<iOS4Decoder>(), ElementsAre("four.jpg"));
}

// In the manifest the newest comes first: generation 5 keeps that order, 4 goes by the date.
TEST_F(ManifestDecoders, askForLettersAtTheEndAndForNoDot) {
  std::vector<ManifestEntry> entries;
  for (const char* path : {"IMG_1.JPG", "IMG_2.png", "IMG_3.MOV", "IMG_4.jpeg", "Thumbs.xjpg",
                           "pNg", "jpg.d/x", "IMG.jpg ", "pg"}) {
    const auto date = static_cast<std::uint32_t>(100 - entries.size());
    entries.push_back({.path = path, .modificationDate = date, .filelength = 1});
  }
  writeManifest(entries);
  EXPECT_THAT(photos<iOS5Decoder>(), ElementsAre("IMG_1.JPG", "IMG_2.png", "Thumbs.xjpg", "pNg"));
  EXPECT_THAT(photos<iOS4Decoder>(), ElementsAre("pNg", "Thumbs.xjpg", "IMG_2.png", "IMG_1.JPG"));
}

TEST_F(ManifestDecoders, onlyGeneration4ListsEmptyFilesAndLinks) {
  writeManifest({{.path = "empty.jpg"},
                 {.path = "link.jpg", .mode = samples::linkMode},
                 {.path = "folder.png", .mode = samples::folderMode}});
  EXPECT_THAT(photos<iOS5Decoder>(), ElementsAre());
  EXPECT_THAT(photos<iOS4Decoder>(), ElementsAre("empty.jpg", "link.jpg"));
  iOS4Decoder decoder(m_tree.root());
  decoder.loadContents();
  EXPECT_FALSE(decoder.dataForFileAtPath(m_tree.path("empty.jpg")));
}

TEST_F(ManifestDecoders, theLastOfTwoEntriesOfOneUniquePathAnswers) {
  writeManifest({{.path = "a.jpg", .filelength = 1}, {.path = "/a.jpg", .filelength = 1}});
  m_tree.write(samples::contentName("CameraRollDomain", "a.jpg"), "first");
  m_tree.write(samples::contentName("CameraRollDomain", "/a.jpg"), "last");
  iOS5Decoder decoder(m_tree.root());
  EXPECT_EQ(decoder.imageFilePaths().size(), 2u);
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(m_tree.path("a.jpg"))), "last");
}

TEST_F(ManifestDecoders, findEachOfManyPhotos) {
  std::vector<ManifestEntry> entries;
  for (int i = 0; i < 2000; ++i) {
    entries.push_back({.path = "IMG_" + std::to_string(i) + ".JPG", .filelength = 1});
  }
  writeManifest(entries);
  for (const int i : {0, 777, 1999}) {
    const std::string number = std::to_string(i);
    m_tree.write(samples::contentName("CameraRollDomain", "IMG_" + number + ".JPG"), number);
  }
  iOS5Decoder decoder(m_tree.root());
  int held = 0;
  for (const std::string& path : decoder.imageFilePaths()) {
    held += decoder.holdsFileAtPath(path);
  }
  EXPECT_EQ(held, 3);
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(m_tree.path("IMG_777.JPG"))), "777");
  EXPECT_FALSE(decoder.dataForFileAtPath(m_tree.path("IMG_777.jpg")));
}

TEST_F(ManifestDecoders, takeBooleansAndNumbersAsTheFlagOfEncryption) {
  struct Case {
    PlistValue value;
    bool encrypted;
  };
  for (const Case& c :
       {Case{true, true}, Case{false, false}, Case{1, true}, Case{0, false}, Case{-1, true},
        Case{0.5, true}, Case{"true", false}, Case{PlistValue::data("1"), false},
        Case{PlistValue::array({true}), false}}) {
    m_tree.write("Manifest.plist",
                 samples::binaryPropertyList(PlistValue::dictionary({{"IsEncrypted", c.value}})));
    iOS5Decoder decoder(m_tree.root());
    decoder.loadContents();
    EXPECT_EQ(decoder.encrypted(), c.encrypted) << samples::xmlPropertyList(c.value);
  }
  for (const char* rubbish : {"", "bplist00", "rubbish", "<plist><array/></plist>"}) {
    m_tree.write("Manifest.plist", rubbish);
    iOS5Decoder decoder(m_tree.root());
    decoder.loadContents();
    EXPECT_FALSE(decoder.encrypted()) << rubbish;
  }
}

}  // namespace
}  // namespace snaplift
