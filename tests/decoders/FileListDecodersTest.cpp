// Where the decoders of generations 3 and 2 differ from each other, and what a hostile listing of
// theirs can do.

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ListedPhotos.h"
#include "decoders/iOS2Decoder.h"
#include "decoders/iOS3Decoder.h"
#include "samples/BackupWriter.h"
#include "samples/PropertyListWriter.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using samples::binaryPropertyList;
using samples::PlistValue;
using testing::ElementsAre;
using testing::IsEmpty;

PlistValue mediaFile() {
  return PlistValue::dictionary({{"Domain", "MediaDomain"}});
}

PlistValue mediaFile(std::int64_t modificationTime) {
  return PlistValue::dictionary(
      {{"Domain", "MediaDomain"}, {"ModificationTime", instantFromUnixTime(modificationTime)}});
}

PlistValue homeFile() {
  return PlistValue::dictionary({{"Domain", "HomeDomain"}});
}

PlistValue nested(const PlistValue& value) {
  return PlistValue::data(binaryPropertyList(value));
}

// An info file that either generation finds a path in.
std::string infoWithPath(const std::string& path) {
  return binaryPropertyList(PlistValue::dictionary(
      {{"Path", path}, {"Metadata", nested(PlistValue::dictionary({{"Path", path}}))}}));
}

class FileListDecoders : public testing::Test {
protected:
  void writeManifest(PlistValue data) {
    m_tree.write("Manifest.plist",
                 binaryPropertyList(PlistValue::dictionary({{"Data", std::move(data)}})));
  }

  void writeListing(PlistValue files) {
    writeManifest(nested(PlistValue::dictionary({{"Files", std::move(files)}})));
  }

  void writePhoto(const std::string& base, const std::string& path) {
    m_tree.write(base + ".mdinfo", infoWithPath(path));
    m_tree.write(base + ".mddata", "content of " + base);
  }

  template <class Decoder>
  std::vector<std::string> photos() {
    return listedPhotos<Decoder>(m_tree.root());
  }

  TemporaryTree m_tree;
};

TEST_F(FileListDecoders, generation3OrdersByTheManifestsDates) {
  writeListing(PlistValue::dictionary({{"none2", mediaFile()},
                                       {"old", mediaFile(1246406400)},
                                       {"none1", mediaFile()},
                                       {"equal2", mediaFile(5)},
                                       {"equal1", mediaFile(5)},
                                       {"new", mediaFile(1262649600)}}));
  for (const std::string base : {"none1", "none2", "old", "new", "equal1", "equal2"}) {
    writePhoto(base, base + ".jpg");
  }
  EXPECT_THAT(photos<iOS3Decoder>(), ElementsAre("new.jpg", "old.jpg", "equal1.jpg", "equal2.jpg",
                                                 "none1.jpg", "none2.jpg"));
}

TEST_F(FileListDecoders, generation2OrdersByTheFilesDates) {
  writeListing(PlistValue::dictionary(
      {{"a", homeFile()}, {"b", homeFile()}, {"c", homeFile()}, {"gone", homeFile()}}));
  for (const std::string base : {"a", "b", "c"}) {
    m_tree.write(base + ".mdinfo", infoWithPath(base + ".jpg"));
  }
  samples::setModificationDate(m_tree.write("a.mddata", "a"), instantFromUnixTime(10));
  samples::setModificationDate(m_tree.write("b.mddata", "b"), instantFromUnixTime(20));
  EXPECT_THAT(photos<iOS2Decoder>(), ElementsAre("b.jpg", "a.jpg", "c.jpg"));
}

TEST_F(FileListDecoders, askForARealExtension) {
  PlistValue::Dictionary files;
  for (const char* path : {"a.JPG", "b.Png", "c.jpg", "d.jpeg", "e.gif", "jpg", "f", ".jpg",
                           "g.jpg/", "h.xjpg", "i.jpg."}) {
    const std::string base = "base" + std::to_string(files.size());
    files.emplace_back(base, mediaFile());
    writePhoto(base, path);
  }
  writeListing(std::move(files));
  EXPECT_THAT(photos<iOS3Decoder>(), ElementsAre("a.JPG", "b.Png", "c.jpg", "g.jpg/"));
}

TEST_F(FileListDecoders, takeOnlyTheirDomain) {
  writeListing(
      PlistValue::dictionary({{"media", mediaFile()},
                              {"home", homeFile()},
                              {"roll", PlistValue::dictionary({{"Domain", "CameraRollDomain"}})},
                              {"case", PlistValue::dictionary({{"Domain", "mediadomain"}})},
                              {"none", PlistValue::dictionary({})},
                              {"odd", PlistValue("MediaDomain")}}));
  for (const std::string base : {"media", "home", "roll", "case", "none", "odd"}) {
    writePhoto(base, base + ".jpg");
  }
  EXPECT_THAT(photos<iOS3Decoder>(), ElementsAre("media.jpg"));
  EXPECT_THAT(photos<iOS2Decoder>(), ElementsAre("home.jpg"));
}

TEST_F(FileListDecoders, generation2PrefersThePairAndKeepsTheSingleFormInMemory) {
  writeListing(PlistValue::dictionary(
      {{"both", homeFile()}, {"single", homeFile()}, {"broken", homeFile()}}));
  const auto single = [](const char* path, const std::string& content) {
    return binaryPropertyList(
        PlistValue::dictionary({{"Path", path}, {"Data", PlistValue::data(content)}}));
  };
  writePhoto("both", "both.jpg");
  m_tree.write("both.mdbackup", single("both.jpg", "ignored"));
  const std::string content(1234, '\xFF');
  m_tree.write("single.mdbackup", single("Media/DCIM/100APPLE/IMG_0007.JPG", content));
  m_tree.write("broken.mdinfo", "rubbish");
  m_tree.write("broken.mdbackup", single("broken.png", "saved"));

  iOS2Decoder decoder(m_tree.root());
  decoder.loadContents();
  EXPECT_EQ(decoder.imageFilePaths().size(), 3u);
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(m_tree.path("both.jpg"))), "content of both");
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(m_tree.path("broken.png"))), "saved");
  m_tree.write("single.mdbackup", "gone since");
  const std::string path = m_tree.path("Media/DCIM/100APPLE/IMG_0007.JPG");
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(path)), content);
}

TEST_F(FileListDecoders, generation2ReadsAgainWhatWouldBeTooMuchToHold) {
  PlistValue::Dictionary files;
  for (int i = 0; i < 10; ++i) {
    const std::string base = "base" + std::to_string(i);
    files.emplace_back(base, homeFile());
    m_tree.write(
        base + ".mdbackup",
        binaryPropertyList(PlistValue::dictionary(
            {{"Path", base + ".jpg"}, {"Data", PlistValue::data(std::string(100, 'x'))}})));
  }
  writeListing(std::move(files));
  iOS2Decoder decoder(m_tree.root(), 350);
  std::vector<std::string> paths = decoder.imageFilePaths();
  ASSERT_EQ(paths.size(), 10u);
  const auto answers = [&](const std::string& path) {
    const auto bytes = decoder.dataForFileAtPath(path);
    return bytes && textOf(*bytes) == std::string(100, 'x');
  };
  EXPECT_EQ(std::ranges::count_if(paths, answers), 10);
  for (int i = 0; i < 10; ++i) {
    m_tree.write("base" + std::to_string(i) + ".mdbackup", "gone since");
  }
  EXPECT_EQ(std::ranges::count_if(paths, answers), 3);
}

TEST_F(FileListDecoders, namesInAManifestCannotLeaveTheBackup) {
  const TemporaryTree outside;
  outside.write("secret.mdinfo", infoWithPath("secret.jpg"));
  outside.write("secret.mddata", "secret");
  m_tree.write("sub/inner.mdinfo", infoWithPath("secret.jpg"));
  m_tree.write(".mdinfo", infoWithPath("secret.jpg"));
  const std::string sibling = "../" + outside.root().substr(outside.root().rfind('/') + 1);
  for (const PlistValue& file : {mediaFile(), homeFile()}) {
    writeListing(PlistValue::dictionary({{outside.path("secret"), file},
                                         {sibling + "/secret", file},
                                         {"sub/inner", file},
                                         {"", file},
                                         {".", file},
                                         {"..", file},
                                         {std::string("sub\0x", 5), file}}));
    EXPECT_THAT(photos<iOS3Decoder>(), IsEmpty());
    EXPECT_THAT(photos<iOS2Decoder>(), IsEmpty());
  }
}

TEST_F(FileListDecoders, dropEntriesThatLackSomethingAndKeepTheRest) {
  PlistValue::Dictionary files = {{"good", mediaFile()}, {"missing", mediaFile()}};
  writePhoto("good", "good.jpg");
  const auto add = [&](const std::string& base, const std::string& info) {
    files.emplace_back(base, mediaFile());
    m_tree.write(base + ".mdinfo", info);
  };
  const auto addMetadata = [&](const std::string& base, const PlistValue& metadata) {
    add(base, binaryPropertyList(PlistValue::dictionary({{"Metadata", metadata}})));
  };
  add("rubbish", "rubbish");
  addMetadata("number", 1);
  addMetadata("rubbishInside", PlistValue::data("rubbish"));
  addMetadata("noPath", nested(PlistValue::dictionary({})));
  addMetadata("numberPath", nested(PlistValue::dictionary({{"Path", 7}})));
  addMetadata("noDictionary", nested("good.jpg"));
  writeListing(std::move(files));
  EXPECT_THAT(photos<iOS3Decoder>(), ElementsAre("good.jpg"));
}

TEST_F(FileListDecoders, aListingOfTheWrongTypeIsEmpty) {
  writePhoto("x", "x.jpg");
  for (const PlistValue& files :
       {PlistValue("x"), PlistValue::array({mediaFile()}), PlistValue(1)}) {
    writeListing(files);
    EXPECT_THAT(photos<iOS3Decoder>(), IsEmpty());
  }
  for (const PlistValue& data :
       {PlistValue("x"), PlistValue::data("rubbish"), PlistValue::dictionary({})}) {
    writeManifest(data);
    EXPECT_THAT(photos<iOS3Decoder>(), IsEmpty());
  }
}

TEST_F(FileListDecoders, aBaseNameThatIsListedTwiceCountsOnce) {
  PlistValue::Dictionary files;
  for (int i = 0; i < 1000; ++i) {
    files.emplace_back("base", i % 2 ? mediaFile(i) : homeFile());
  }
  writeListing(std::move(files));
  writePhoto("base", "a.jpg");
  EXPECT_THAT(photos<iOS3Decoder>(), ElementsAre("a.jpg"));
  EXPECT_THAT(photos<iOS2Decoder>(), ElementsAre("a.jpg"));
}

TEST_F(FileListDecoders, anInventoryTellsOfFilesWithoutContent) {
  writeListing(PlistValue::dictionary({{"gone", mediaFile()}, {"bare", homeFile()}}));
  m_tree.write("gone.mdinfo", infoWithPath("gone.mov"));
  const std::string bare = binaryPropertyList(PlistValue::dictionary({{"Path", "bare.mov"}}));
  m_tree.write("bare.mdbackup", bare);
  int files = 0;
  iOS3Decoder(m_tree.root()).visitFiles([&](const BackedUpFile& file) {
    ++files;
    EXPECT_EQ(file.path, "gone.mov");
    EXPECT_EQ(file.filelength, 0u);
  });
  iOS2Decoder(m_tree.root()).visitFiles([&](const BackedUpFile& file) {
    ++files;
    EXPECT_EQ(file.path, "bare.mov");
    EXPECT_EQ(file.filelength, bare.size());
  });
  EXPECT_EQ(files, 2);
}

TEST_F(FileListDecoders, theOldestOfTwoRecordsOfOnePathAnswers) {
  writeListing(PlistValue::dictionary({{"old", mediaFile(1)}, {"new", mediaFile(2)}}));
  writePhoto("old", "same.jpg");
  writePhoto("new", "same.jpg");
  iOS3Decoder decoder(m_tree.root());
  EXPECT_EQ(decoder.imageFilePaths().size(), 2u);
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(m_tree.path("same.jpg"))), "content of old");
}

}  // namespace
}  // namespace snaplift
