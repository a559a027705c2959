// The contract that the rest of the system knows a decoder by, proved over every generation.

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "decoders/iOS10Decoder.h"
#include "decoders/iOS2Decoder.h"
#include "decoders/iOS3Decoder.h"
#include "decoders/iOS4Decoder.h"
#include "decoders/iOS5Decoder.h"
#include "foundation/Log.h"
#include "foundation/files/Path.h"
#include "samples/BackupWriter.h"
#include "support/TemporaryTree.h"
#include "support/TreeState.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using samples::Generation;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;

struct Layout {
  const char* name;
  Generation generation;
  std::unique_ptr<BackupDecoderDelegate> (*makeDecoder)(const std::string& path);
  bool canBeEncrypted;
};

template <class Decoder>
std::unique_ptr<BackupDecoderDelegate> make(const std::string& path) {
  return std::make_unique<Decoder>(path);
}

class DecoderContract : public testing::TestWithParam<Layout> {
protected:
  static constexpr std::size_t photoCount = 40;

  std::string folder() const { return m_tree.path("backup"); }

  // Photos in a shuffled order of dates, then files that are none.
  samples::SampleBackup backup() const {
    const std::string domain(samples::photoDomain(GetParam().generation));
    samples::SampleBackup backup{
        .generation = GetParam().generation, .deviceName = "Phone", .productVersion = "5.0"};
    for (std::size_t i = 0; i < photoCount; ++i) {
      const std::string name =
          "Media/DCIM/100APPLE/IMG_" + std::to_string(i) + (i % 2 ? ".JPG" : ".png");
      backup.files.push_back(
          {.domain = domain,
           .path = name,
           .content = "photo " + std::to_string(i),
           .modificationDate = static_cast<std::uint32_t>(1 + i * 7 % photoCount)});
    }
    for (const char* other : {"Media/a.mov", "Media/b.jpeg", "Media/plain"}) {
      backup.files.push_back(
          {.domain = domain, .path = other, .content = "other", .modificationDate = 1});
    }
    backup.files.push_back(
        {.domain = "OtherDomain", .path = "x.jpg", .content = "elsewhere", .modificationDate = 1});
    return backup;
  }

  std::unique_ptr<BackupDecoderDelegate> decoder() const {
    return GetParam().makeDecoder(folder());
  }

  bool hasDatabase() const { return GetParam().generation >= Generation::Four; }

  // The database of generation 10 may be encrypted as well.
  bool listsWhenEncrypted() const { return GetParam().generation != Generation::Ten; }

  // The name of the file that holds the bytes of that one.
  std::string contentFile(const samples::SampleFile& file) const {
    const std::string name = samples::contentName(file.domain, file.path);
    switch (GetParam().generation) {
      case Generation::TwoSingleForm:
        return name + ".mdbackup";
      case Generation::TwoPairForm:
      case Generation::Three:
        return name + ".mddata";
      case Generation::Ten:
        return name.substr(0, 2) + "/" + name;
      default:
        return name;
    }
  }

  // The unique paths of the photos, in the order of backup().
  std::vector<std::string> photoPaths() const {
    std::vector<std::string> paths;
    for (const samples::SampleFile& file : backup().files) {
      paths.push_back(folder() + "/" + file.path);
    }
    paths.resize(photoCount);
    return paths;
  }

  std::size_t numberOf(const std::string& path) const {
    const auto paths = photoPaths();
    return static_cast<std::size_t>(std::ranges::find(paths, path) - paths.begin());
  }

  TemporaryTree m_tree;
};

TEST_P(DecoderContract, listsThePhotosWithTheirBytesAndWhatItKnowsAndWritesNothing) {
  samples::writeBackup(folder(), backup());
  const auto before = treeState(folder());
  const auto decoder = this->decoder();
  EXPECT_EQ(decoder->photoInfo(0).devicePath, "");
  const std::vector<std::string> listed = decoder->imageFilePaths();
  const std::vector<std::string> paths = photoPaths();
  EXPECT_THAT(listed, UnorderedElementsAreArray(paths));
  for (std::size_t i = 0; i < photoCount; ++i) {
    const auto bytes = decoder->dataForFileAtPath(paths[i]);
    ASSERT_TRUE(bytes) << paths[i];
    EXPECT_EQ(textOf(*bytes), "photo " + std::to_string(i));
  }
  EXPECT_FALSE(decoder->dataForFileAtPath(folder() + "/Media/a.mov"));
  EXPECT_FALSE(decoder->dataForFileAtPath("/another/backup/Media/DCIM/100APPLE/IMG_1.JPG"));
  for (std::size_t i = 0; i < photoCount; ++i) {
    const PhotoInfo info = decoder->photoInfo(i);
    EXPECT_EQ(folder() + "/" + std::string(info.devicePath), listed[i]);
    const samples::SampleFile file = backup().files[numberOf(listed[i])];
    EXPECT_EQ(info.size, hasDatabase() ? std::optional(file.content.size()) : std::nullopt);
    EXPECT_EQ(info.date(), knownTime(instantFromUnixTime(file.modificationDate)));
    EXPECT_EQ(info.birthDate.has_value(), hasDatabase() && info.date());
    EXPECT_EQ(decoder->contentState(i), ContentState::Whole);
  }
  EXPECT_EQ(decoder->photoInfo(photoCount).devicePath, "");
  EXPECT_EQ(decoder->contentState(photoCount), ContentState::Missing);
  decoder->visitFiles([](const BackedUpFile&) {});
  EXPECT_EQ(treeState(folder()), before);
}

TEST_P(DecoderContract, tellsAContentFileOfAnotherLengthWhereTheBackupStatesOne) {
  for (const bool encrypted : {false, listsWhenEncrypted()}) {
    samples::SampleBackup sample = backup();
    sample.encrypted = encrypted;
    samples::writeBackup(folder(), sample);
    const auto decoder = this->decoder();
    const std::size_t number = numberOf(decoder->imageFilePaths().front());
    const std::string file = "backup/" + contentFile(sample.files[number]);
    const std::string whole = m_tree.read(file);
    for (const std::string& changed : {std::string(), whole.substr(1), whole + "x"}) {
      m_tree.write(file, changed);
      EXPECT_EQ(decoder->contentState(0),
                hasDatabase() && !encrypted ? ContentState::Short : ContentState::Whole);
    }
  }
}

TEST_P(DecoderContract, readsNothingBeforeItIsAskedAndAStoppedLoadCountsAsNone) {
  const auto early = decoder();
  samples::writeBackup(folder(), backup());
  EXPECT_FALSE(early->dataForFileAtPath(photoPaths()[0]));
  EXPECT_FALSE(early->encrypted());
  std::stop_source stop;
  stop.request_stop();
  early->loadContents(stop.get_token());
  EXPECT_FALSE(early->dataForFileAtPath(photoPaths()[0]));
  EXPECT_THAT(early->imageFilePaths(), SizeIs(photoCount));
  EXPECT_TRUE(early->dataForFileAtPath(photoPaths()[0]));
}

TEST_P(DecoderContract, findsTheManifestInEitherLetterCaseAndEncoding) {
  for (const auto encoding :
       {samples::PropertyListEncoding::Xml, samples::PropertyListEncoding::Binary}) {
    for (const bool lowerCase : {false, true}) {
      samples::SampleBackup sample = backup();
      sample.encrypted = true;
      sample.encoding = encoding;
      sample.lowerCaseNames = lowerCase;
      fs::remove_all(folder());
      samples::writeBackup(folder(), sample);
      const auto decoder = this->decoder();
      decoder->loadContents();
      EXPECT_EQ(decoder->encrypted(), GetParam().canBeEncrypted);
      EXPECT_TRUE(decoder->isComplete());
      EXPECT_THAT(decoder->imageFilePaths(), SizeIs(listsWhenEncrypted() ? photoCount : 0));
    }
  }
}

TEST_P(DecoderContract, aBackupWithoutAnythingHasNoPhotos) {
  const auto decoder = this->decoder();
  const LogCapture quietly([](const std::string&) {});
  decoder->loadContents();
  EXPECT_THAT(decoder->imageFilePaths(), IsEmpty());
  EXPECT_FALSE(decoder->encrypted());
  EXPECT_FALSE(decoder->isComplete());
  decoder->visitFiles([](const BackedUpFile& file) { ADD_FAILURE() << file.path; });
}

TEST_P(DecoderContract, tellsWhetherItCouldReadWhatListsThePhotos) {
  const LogCapture quietly([](const std::string&) {});
  samples::writeBackup(folder(), backup());
  const auto isComplete = [&] {
    const auto decoder = this->decoder();
    decoder->loadContents();
    return decoder->isComplete();
  };
  EXPECT_TRUE(isComplete());
  int listing = 0;
  int missing = 0;
  for (const std::string& name : m_tree.list("backup")) {
    const std::string file = "backup/" + name;
    if (fs::is_directory(m_tree.path(file))) {
      continue;
    }
    const std::string whole = m_tree.read(file);
    const bool holdsAPhoto = whole.starts_with("photo");
    if (equalsIgnoringCase(name, "info.plist") || holdsAPhoto) {
      continue;
    }
    m_tree.write(file, whole.substr(0, whole.size() / 2));
    listing += isComplete() ? 0 : 1;
    fs::remove(m_tree.path(file));
    missing += isComplete() ? 0 : 1;
    m_tree.write(file, whole);
  }
  // The manifest lists itself, and either a database or a small file for each photo.
  EXPECT_EQ(listing, hasDatabase() ? 2 : 1 + static_cast<int>(photoCount) + 3);
  // A database lists the photos without "Manifest.plist".
  EXPECT_EQ(missing, hasDatabase() ? 1 : listing);
}

TEST_P(DecoderContract, aPhotoWithoutARegularFileIsListedAndHasNoBytes) {
  if (GetParam().generation == Generation::TwoSingleForm) {
    GTEST_SKIP() << "the file that holds the bytes is the one that names the photo";
  }
  constexpr int missing = 3;
  constexpr int replaced = 5;  // when the decoder has loaded
  samples::SampleBackup sample = backup();
  sample.files[missing].contentMissing = true;
  samples::writeBackup(folder(), sample);
  const auto decoder = this->decoder();
  EXPECT_THAT(decoder->imageFilePaths(), SizeIs(photoCount));
  const std::vector<std::string> listed = decoder->imageFilePaths();
  const std::string path = folder() + "/" + contentFile(sample.files[replaced]);
  ASSERT_EQ(::unlink(path.c_str()), 0);
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  for (const int photo : {missing, replaced}) {
    EXPECT_FALSE(decoder->dataForFileAtPath(photoPaths()[photo]));
    const std::size_t index = std::ranges::find(listed, photoPaths()[photo]) - listed.begin();
    EXPECT_EQ(decoder->contentState(index), ContentState::Missing);
    EXPECT_TRUE(decoder->dataForFileAtPath(photoPaths()[photo + 1]));
  }
}

TEST_P(DecoderContract, handsOutBytesToManyThreadsWhileAnotherBackupLoads) {
  samples::writeBackup(folder(), backup());
  const auto decoder = this->decoder();
  decoder->loadContents();
  const std::vector<std::string> paths = photoPaths();
  std::atomic<std::size_t> right = 0;
  {
    std::vector<std::jthread> threads;
    threads.emplace_back([this] { this->decoder()->loadContents(); });
    for (int t = 0; t < 8; ++t) {
      threads.emplace_back([&] {
        Bytes buffer;
        for (std::size_t i = 0; i < photoCount; ++i) {
          auto bytes = decoder->dataForFileAtPath(paths[i], std::move(buffer));
          right += bytes && textOf(*bytes) == "photo " + std::to_string(i);
          buffer = bytes ? std::move(*bytes) : Bytes();
        }
      });
    }
  }
  EXPECT_EQ(right, 8 * photoCount);
}

TEST_P(DecoderContract, keepsOtherMediaApartAndFindsWhatTheDeviceMadeOfThem) {
  samples::SampleBackup backup = this->backup();
  const std::string film = "Media/DCIM/100APPLE/IMG_1.MOV", other = "Media/DCIM/100APPLE/a.gif";
  const std::string made = "Media/PhotoData/Thumbnails/V2/DCIM/100APPLE/IMG_1.MOV/";
  for (const std::string& path : {film, other, made + "5003.JPG", made + "5005.JPG"}) {
    const bool isLarge = path.ends_with("5003.JPG");
    backup.files.push_back({.domain = backup.files.front().domain,
                            .path = path,
                            .content = path + (isLarge ? " in large" : ""),
                            .modificationDate = path == other ? 1000U : 1001U});
  }
  samples::writeBackup(folder(), backup);
  const auto decoder = this->decoder();
  const bool listsAll = GetParam().generation == Generation::Ten;
  const auto& listed = listsAll ? decoder->imageFilePaths() : decoder->otherMediaPaths();
  EXPECT_THAT(decoder->otherMediaPaths(), SizeIs(listsAll ? 0 : 2));
  ASSERT_THAT(listed, testing::IsSupersetOf({folder() + "/" + film, folder() + "/" + other}));
  const std::size_t first = listsAll ? 0 : decoder->imageFilePaths().size();
  for (std::size_t i = 0; i < listed.size(); ++i) {
    const PhotoInfo info = decoder->photoInfo(first + i);
    const bool isFilm = info.devicePath == film;
    EXPECT_EQ(folder() + "/" + std::string(info.devicePath), listed[i]);
    EXPECT_EQ(info.media, isFilm ? PhotoMedia::Film : PhotoMedia::Photo);
    EXPECT_EQ(decoder->contentState(first + i), ContentState::Whole);
    ASSERT_TRUE(decoder->dataForFileAtPath(listed[i]));
    const auto thumbnail = decoder->thumbnailData(first + i);
    ASSERT_EQ(thumbnail.has_value(), isFilm && hasDatabase()) << info.devicePath;
    EXPECT_TRUE(!thumbnail || textOf(*thumbnail) == made + "5003.JPG in large");
  }
}

TEST_P(DecoderContract, visitsEveryFileWithAllThatIsKnownOfIt) {
  samples::writeBackup(folder(), backup());
  using Line = std::tuple<std::string, std::string, std::uint64_t, std::optional<Instant>>;
  std::vector<Line> visited;
  this->decoder()->visitFiles([&](const BackedUpFile& file) {
    EXPECT_EQ(file.domain == "OtherDomain", file.path == "x.jpg");
    visited.emplace_back(file.path, file.filename, file.filelength, file.modificationDate);
    EXPECT_EQ(file.type.has_value(), GetParam().generation == Generation::Four);
  });
  std::vector<Line> expected;
  for (const samples::SampleFile& file : backup().files) {
    if (hasDatabase() || file.domain != "OtherDomain") {
      expected.emplace_back(file.path, contentFile(file), file.content.size(),
                            instantFromUnixTime(file.modificationDate));
    }
  }
  EXPECT_THAT(visited, UnorderedElementsAreArray(expected));
}

INSTANTIATE_TEST_SUITE_P(
    Generations, DecoderContract,
    testing::Values(Layout{"iOS10", Generation::Ten, make<iOS10Decoder>, true},
                    Layout{"iOS5", Generation::Five, make<iOS5Decoder>, true},
                    Layout{"iOS4", Generation::Four, make<iOS4Decoder>, true},
                    Layout{"iOS3", Generation::Three, make<iOS3Decoder>, true},
                    Layout{"iOS2Pairs", Generation::TwoPairForm, make<iOS2Decoder>, false},
                    Layout{"iOS2Singles", Generation::TwoSingleForm, make<iOS2Decoder>, false}),
    [](const testing::TestParamInfo<Layout>& layout) { return layout.param.name; });

}  // namespace
}  // namespace snaplift
