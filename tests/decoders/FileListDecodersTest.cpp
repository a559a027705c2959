// Where the decoders of generations 3 and 2 differ from each other, and what a hostile listing of
// theirs can do.

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ListedPhotos.h"
#include "decoders/iOS2Decoder.h"
#include "decoders/iOS3Decoder.h"
#include "foundation/Log.h"
#include "samples/BackupWriter.h"
#include "samples/PropertyListWriter.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using samples::binaryPropertyList;
using samples::PlistValue;
using testing::ElementsAre;
using testing::IsEmpty;

PlistValue mediaFile(std::optional<std::int64_t> modificationTime = {}) {
  PlistValue::Dictionary file = {{"Domain", "MediaDomain"}};
  if (modificationTime) {
    file.emplace_back("ModificationTime", instantFromUnixTime(*modificationTime));
  }
  return file;
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

// Generation 2's one file of a photo's path and bytes.
std::string singleForm(const std::string& path, const std::string& content) {
  return binaryPropertyList(
      PlistValue::dictionary({{"Path", path}, {"Data", PlistValue::data(content)}}));
}

class FileListDecoders : public testing::Test {
protected:
  void writeManifest(const PlistValue& data) {
    m_tree.write("Manifest.plist", binaryPropertyList(PlistValue::dictionary({{"Data", data}})));
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
                                       {"tied2", mediaFile(5)},
                                       {"tied1", mediaFile(5)},
                                       {"new", mediaFile(1262649600)}}));
  for (const std::string base : {"none1", "none2", "old", "new"}) {
    writePhoto(base, base + ".jpg");
  }
  // A tie goes by path, not by base name or listing.
  writePhoto("tied1", "equal2.jpg");
  writePhoto("tied2", "equal1.jpg");
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

TEST_F(FileListDecoders, generation2PrefersThePairAndKeepsTheSingleFormInMemory) {
  writeListing(PlistValue::dictionary(
      {{"both", homeFile()}, {"single", homeFile()}, {"broken", homeFile()}}));
  writePhoto("both", "both.jpg");
  m_tree.write("both.mdbackup", singleForm("both.jpg", "ignored"));
  const std::string content(1234, '\xFF');
  m_tree.write("single.mdbackup", singleForm("Media/DCIM/100APPLE/IMG_0007.JPG", content));
  m_tree.write("broken.mdinfo", "rubbish");
  m_tree.write("broken.mdbackup", singleForm("broken.png", "saved"));

  iOS2Decoder decoder(m_tree.root());
  decoder.loadContents();
  EXPECT_EQ(decoder.imageFilePaths().size(), 3u);
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(m_tree.path("both.jpg"))), "content of both");
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(m_tree.path("broken.png"))), "saved");
  std::filesystem::remove(m_tree.path("single.mdbackup"));
  const std::string path = m_tree.path("Media/DCIM/100APPLE/IMG_0007.JPG");
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(path)), content);
}

TEST_F(FileListDecoders, generation2ReadsAgainWhatWouldBeTooMuchToHold) {
  PlistValue::Dictionary files;
  for (int i = 0; i < 10; ++i) {
    const std::string base = "base" + std::to_string(i);
    files.emplace_back(base, homeFile());
    m_tree.write(base + ".mdbackup", singleForm(base + ".jpg", std::string(100, 'x')));
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
  PlistValue::Dictionary files = {
      {"good", mediaFile()},
      {"missing", mediaFile()},
      {"otherCase", PlistValue::dictionary({{"Domain", "mediadomain"}})},
      {"noDomain", PlistValue::dictionary({})},
      {"noDictionary", "MediaDomain"}};
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
  addMetadata("textInside", nested("good.jpg"));
  writeListing(std::move(files));
  std::vector<std::string> log;
  const LogCapture capture([&](std::string line) { log.push_back(std::move(line)); });
  EXPECT_THAT(photos<iOS3Decoder>(), ElementsAre("good.jpg"));
  EXPECT_EQ(log.size(), 7u);
}

TEST_F(FileListDecoders, aListingOfTheWrongTypeIsEmpty) {
  const LogCapture quietly([](const std::string&) {});
  writePhoto("x", "x.jpg");
  const auto listing = [](const PlistValue& files) {
    return nested(PlistValue::dictionary({{"Files", files}}));
  };
  for (const PlistValue& data :
       {listing("x"), listing(PlistValue::array({mediaFile()})), listing(1), PlistValue("x"),
        PlistValue::data("rubbish"), PlistValue::dictionary({})}) {
    writeManifest(data);
    iOS3Decoder decoder(m_tree.root());
    EXPECT_THAT(decoder.imageFilePaths(), IsEmpty());
    EXPECT_FALSE(decoder.isComplete());
  }
  writeListing(PlistValue::dictionary({}));
  iOS3Decoder empty(m_tree.root());
  EXPECT_THAT(empty.imageFilePaths(), IsEmpty());
  EXPECT_TRUE(empty.isComplete());
}

TEST_F(FileListDecoders, aRecordThatIsListedTwiceCountsOnceAndTheOldestOfAPathAnswers) {
  PlistValue::Dictionary files = {{"old", mediaFile(1)}};
  for (int i = 2; i < 1000; ++i) {
    files.emplace_back("base", i % 2 ? mediaFile(i) : homeFile());
  }
  writeListing(std::move(files));
  writePhoto("old", "same.jpg");
  writePhoto("base", "same.jpg");
  EXPECT_THAT(photos<iOS2Decoder>(), ElementsAre("same.jpg"));
  iOS3Decoder decoder(m_tree.root());
  EXPECT_EQ(decoder.imageFilePaths().size(), 2u);
  EXPECT_EQ(textOf(*decoder.dataForFileAtPath(m_tree.path("same.jpg"))), "content of old");
}

}  // namespace
}  // namespace snaplift
