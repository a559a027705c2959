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
  iOS4Decoder(m_tree.root()).visitFiles([](const BackedUpFile& file) {
    ADD_FAILURE() << file.path << " has nothing to show";
  });
}

TEST_F(ManifestDecoders, takeAPhotosDatesFromTheFirstAndTheThirdTime) {
  writeManifest({{.path = "a.jpg",
                  .creationDate = 20,
                  .modificationDate = 30,
                  .addedDate = 10,
                  .filelength = 7},
                 {.path = "b.jpg", .creationDate = 40, .modificationDate = 50, .filelength = 1}});
  iOS5Decoder five(m_tree.root());
  iOS4Decoder four(m_tree.root());
  for (BackupDecoderDelegate* decoder :
       std::initializer_list<BackupDecoderDelegate*>{&five, &four}) {
    decoder->loadContents();
    const PhotoInfo info = decoder->photoInfo(0);
    EXPECT_EQ(info.modificationDate, instantFromUnixTime(20));
    EXPECT_EQ(info.birthDate, instantFromUnixTime(10));
    EXPECT_EQ(info.date(), instantFromUnixTime(10));
    EXPECT_EQ(decoder->photoInfo(1).date(), instantFromUnixTime(40));
  }
}

TEST_F(ManifestDecoders, theLastOfTwoEntriesOfOneUniquePathAnswers) {
  writeManifest({{.path = "a.jpg", .filelength = 1}, {.path = "/a.jpg", .filelength = 1}});
  m_tree.write(samples::contentName("CameraRollDomain", "a.jpg"), "first");
  m_tree.write(samples::contentName("CameraRollDomain", "/a.jpg"), "last");
  iOS5Decoder decoder(m_tree.root());
  EXPECT_EQ(decoder.imageFilePaths().size(), 2u);
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(m_tree.path("a.jpg"))), "last");
}

TEST_F(ManifestDecoders, takeBooleansAndNumbersAsTheFlagOfEncryption) {
  const auto isEncrypted = [this](std::string_view manifest) {
    m_tree.write("Manifest.plist", manifest);
    iOS5Decoder decoder(m_tree.root());
    decoder.loadContents();
    return decoder.encrypted();
  };
  const auto flag = [](const PlistValue& value) {
    return samples::binaryPropertyList(PlistValue::dictionary({{"IsEncrypted", value}}));
  };
  for (const PlistValue& value : std::vector<PlistValue>{true, 1, -1, 0.5}) {
    EXPECT_TRUE(isEncrypted(flag(value))) << samples::xmlPropertyList(value);
  }
  for (const std::string& manifest :
       {flag(false), flag(0), flag("true"), flag(PlistValue::data("1")),
        flag(PlistValue::array({true})), std::string(), std::string("bplist00"),
        std::string("rubbish"), std::string("<plist><array/></plist>")}) {
    EXPECT_FALSE(isEncrypted(manifest)) << manifest;
  }
}

}  // namespace
}  // namespace snaplift
