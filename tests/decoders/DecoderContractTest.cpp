// The contract that the rest of the system knows a decoder by, proved over every generation.

#include <atomic>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "decoders/iOS2Decoder.h"
#include "decoders/iOS3Decoder.h"
#include "decoders/iOS4Decoder.h"
#include "decoders/iOS5Decoder.h"
#include "foundation/Log.h"
#include "foundation/Path.h"
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

void PrintTo(const Layout& layout, std::ostream* out) {
  *out << layout.name;
}

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
      const std::string name = "Media/DCIM/IMG_" + std::to_string(i) + (i % 2 ? ".JPG" : ".png");
      backup.files.push_back({.domain = domain,
                              .path = name,
                              .content = "photo " + std::to_string(i),
                              .modificationDate = static_cast<std::uint32_t>(i * 7 % photoCount)});
    }
    for (const char* other : {"Media/a.mov", "Media/b.jpeg", "Media/plain"}) {
      backup.files.push_back({.domain = domain, .path = other, .content = "other"});
    }
    backup.files.push_back({.domain = "OtherDomain", .path = "x.jpg", .content = "elsewhere"});
    return backup;
  }

  std::unique_ptr<BackupDecoderDelegate> decoder() const {
    return GetParam().makeDecoder(folder());
  }

  bool hasDatabase() const { return GetParam().generation >= Generation::Four; }

  // The name of the file that holds the bytes of that one.
  std::string contentFile(const samples::SampleFile& file) const {
    const bool isSingle = GetParam().generation == Generation::TwoSingleForm;
    return samples::contentName(file.domain, file.path) + (hasDatabase() ? ""
                                                           : isSingle    ? ".mdbackup"
                                                                         : ".mddata");
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

  TemporaryTree m_tree;
};

TEST_P(DecoderContract, listsThePhotosAndHandsOutTheirBytes) {
  samples::writeBackup(folder(), backup());
  const auto decoder = this->decoder();
  decoder->loadContents();
  const std::vector<std::string> paths = photoPaths();
  EXPECT_THAT(decoder->imageFilePaths(), UnorderedElementsAreArray(paths));
  for (std::size_t i = 0; i < photoCount; ++i) {
    const auto bytes = decoder->dataForFileAtPath(paths[i]);
    ASSERT_TRUE(bytes) << paths[i];
    EXPECT_EQ(textOf(*bytes), "photo " + std::to_string(i));
    EXPECT_TRUE(decoder->holdsFileAtPath(paths[i]));
  }
  EXPECT_FALSE(decoder->dataForFileAtPath(folder() + "/Media/a.mov"));
  EXPECT_FALSE(decoder->dataForFileAtPath("/another/backup/Media/DCIM/IMG_1.JPG"));
  EXPECT_FALSE(decoder->holdsFileAtPath(""));
}

TEST_P(DecoderContract, readsNothingBeforeItIsAskedAndThenTheSame) {
  const auto early = decoder();
  samples::writeBackup(folder(), backup());
  EXPECT_FALSE(early->dataForFileAtPath(photoPaths()[0]));
  EXPECT_FALSE(early->encrypted());
  const auto loaded = decoder();
  loaded->loadContents();
  EXPECT_EQ(early->imageFilePaths(), loaded->imageFilePaths());
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
      const TemporaryTree tree;
      samples::writeBackup(tree.path("b"), sample);
      const auto decoder = GetParam().makeDecoder(tree.path("b"));
      decoder->loadContents();
      EXPECT_EQ(decoder->encrypted(), GetParam().canBeEncrypted);
      EXPECT_THAT(decoder->imageFilePaths(), SizeIs(photoCount));
    }
  }
}

TEST_P(DecoderContract, aBackupWithoutAnythingHasNoPhotos) {
  const auto decoder = this->decoder();
  decoder->loadContents();
  EXPECT_THAT(decoder->imageFilePaths(), IsEmpty());
  EXPECT_FALSE(decoder->encrypted());
  int files = 0;
  decoder->visitFiles([&](const BackedUpFile&) { ++files; });
  EXPECT_EQ(files, 0);
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
  for (const std::string& name : m_tree.list("backup")) {
    const std::string file = "backup/" + name;
    const std::string whole = m_tree.read(file);
    const bool holdsAPhoto = whole.starts_with("photo");
    if (equalsIgnoringCase(name, "info.plist") || holdsAPhoto) {
      continue;
    }
    m_tree.write(file, whole.substr(0, whole.size() / 2));
    listing += isComplete() ? 0 : 1;
    fs::remove(m_tree.path(file));
    EXPECT_TRUE(isComplete()) << name;  // what is not there is not damaged
    m_tree.write(file, whole);
  }
  // The manifest lists itself, and either a database or a small file for each photo.
  EXPECT_EQ(listing, hasDatabase() ? 2 : 1 + static_cast<int>(photoCount) + 3);
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
  const std::string path = folder() + "/" + contentFile(sample.files[replaced]);
  ASSERT_EQ(::unlink(path.c_str()), 0);
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  for (const int photo : {missing, replaced}) {
    EXPECT_FALSE(decoder->dataForFileAtPath(photoPaths()[photo]));
    EXPECT_FALSE(decoder->holdsFileAtPath(photoPaths()[photo]));
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

TEST_P(DecoderContract, aStoppedLoadCountsAsNone) {
  samples::writeBackup(folder(), backup());
  const auto decoder = this->decoder();
  std::stop_source stop;
  stop.request_stop();
  decoder->loadContents(stop.get_token());
  EXPECT_FALSE(decoder->dataForFileAtPath(photoPaths()[0]));
  EXPECT_THAT(decoder->imageFilePaths(), SizeIs(photoCount));
}

TEST_P(DecoderContract, visitsEveryFileWithAllThatIsKnownOfIt) {
  samples::writeBackup(folder(), backup());
  const auto lineOf = [](std::string_view path, std::string_view filename, std::uint64_t length,
                         Instant date) {
    std::string text(path);
    text.append(" in ").append(filename).append(", ").append(std::to_string(length));
    return text + " bytes of " + rfc3339Text(date);
  };
  std::vector<std::string> visited;
  this->decoder()->visitFiles([&](const BackedUpFile& file) {
    EXPECT_EQ(file.domain == "OtherDomain", file.path == "x.jpg");
    ASSERT_TRUE(file.modificationDate) << file.path;
    visited.push_back(lineOf(file.path, file.filename, file.filelength, *file.modificationDate));
    EXPECT_EQ(file.type.has_value(), GetParam().generation == Generation::Four);
  });
  std::vector<std::string> expected;
  for (const samples::SampleFile& file : backup().files) {
    if (hasDatabase() || file.domain != "OtherDomain") {
      expected.push_back(lineOf(file.path, contentFile(file), file.content.size(),
                                instantFromUnixTime(file.modificationDate)));
    }
  }
  EXPECT_THAT(visited, UnorderedElementsAreArray(expected));
}

TEST_P(DecoderContract, neverWrites) {
  samples::writeBackup(folder(), backup());
  const auto before = treeState(folder());
  const auto decoder = this->decoder();
  for (const std::string& path : decoder->imageFilePaths()) {
    EXPECT_TRUE(decoder->dataForFileAtPath(path));
  }
  decoder->visitFiles([](const BackedUpFile&) {});
  EXPECT_EQ(treeState(folder()), before);
}

INSTANTIATE_TEST_SUITE_P(
    Generations, DecoderContract,
    testing::Values(Layout{"iOS5", Generation::Five, make<iOS5Decoder>, true},
                    Layout{"iOS4", Generation::Four, make<iOS4Decoder>, true},
                    Layout{"iOS3", Generation::Three, make<iOS3Decoder>, true},
                    Layout{"iOS2Pairs", Generation::TwoPairForm, make<iOS2Decoder>, false},
                    Layout{"iOS2Singles", Generation::TwoSingleForm, make<iOS2Decoder>, false}),
    [](const testing::TestParamInfo<Layout>& layout) { return layout.param.name; });

}  // namespace
}  // namespace snaplift
