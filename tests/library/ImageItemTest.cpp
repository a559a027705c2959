#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "faults/FaultyFileSystem.h"
#include "foundation/FileURL.h"
#include "foundation/Log.h"
#include "foundation/Path.h"
#include "foundation/TemporaryFolder.h"
#include "library/FileNameReservation.h"
#include "library/ImageItem.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// A backup whose photos contain their own unique path.
class Photos : public ImageDataSource {
public:
  static std::string contentOf(const std::string& path) { return "photo " + path; }

  std::optional<Bytes> imageDataForPath(const std::string& path, Bytes reuse) const override {
    m_onRead();
    if (path.find("unreadable") != std::string::npos) {
      return std::nullopt;
    }
    m_lastReuse = reuse.capacity();
    const std::string content = contentOf(path);
    reuse.resize(content.size());
    std::ranges::copy(bytesOf(content), reuse.data());
    return reuse;
  }

  std::function<void()> m_onRead = [] {};
  mutable std::atomic<std::size_t> m_lastReuse = 0;  // the capacity of the last buffer
};

class ImageItemTest : public testing::Test {
protected:
  // The names in the destination, each once for each file of that name.
  std::vector<std::string> written() const { return m_tree.list("out"); }
  std::string read(const std::string& name) const { return m_tree.read("out/" + name); }
  void writeTaken(const std::string& name) const { m_tree.write("out/" + name, "old"); }

  TemporaryTree m_tree;
  std::string m_out = m_tree.makeFolder("out");
  Photos m_photos;
  ImageItem m_item{"/b/Media/DCIM/100/IMG_0001.JPG", m_photos};
  std::vector<std::string> m_log;
  LogCapture m_capture{[this](std::string line) { m_log.push_back(std::move(line)); }};
};

TEST_F(ImageItemTest, numbersNamesThatAreTaken) {
  struct Case {
    const char* name;
    std::vector<std::string> taken;
    const char* written;
  };
  for (const Case& c :
       {Case{"IMG_0001.JPG", {}, "IMG_0001.JPG"},
        Case{"IMG_0001.JPG", {"IMG_0001.JPG"}, "IMG_0001 1.JPG"},
        Case{"IMG_0001.JPG", {"IMG_0001.JPG", "IMG_0001 1.JPG"}, "IMG_0001 2.JPG"},
        Case{"IMG_0001.JPG", {"IMG_0001.JPG", "IMG_0001 1.jpg"}, "IMG_0001 1.JPG"},
        Case{"photo", {"photo"}, "photo 1."}, Case{"a.b.png", {"a.b.png"}, "a.b 1.png"}}) {
    const TemporaryTree tree;
    for (const std::string& taken : c.taken) {
      tree.write(taken, "old");
    }
    ImageItem item(joinPath("/b", c.name), m_photos);
    Bytes buffer;
    const ExtractOutcome outcome = item.extractPhoto(tree.root(), buffer);
    EXPECT_EQ(outcome.written, tree.path(c.written));
    EXPECT_EQ(outcome.renamed, !c.taken.empty());
    EXPECT_EQ(outcome.bytes, Photos::contentOf(item.path()).size());
    EXPECT_EQ(outcome.error, std::nullopt);
    EXPECT_EQ(tree.read(c.written), Photos::contentOf(item.path()));
    for (const std::string& taken : c.taken) {
      EXPECT_EQ(tree.read(taken), "old");
    }
    EXPECT_THAT(tree.list(), SizeIs(c.taken.size() + 1));
  }
}

TEST_F(ImageItemTest, givesUpAfterFiftyNumbersAndStartsAgain) {
  writeTaken("IMG_0001.JPG");
  for (int number = 1; number <= 50; ++number) {
    writeTaken("IMG_0001 " + std::to_string(number) + ".JPG");
  }
  m_item.extract(m_out);
  EXPECT_THAT(written(), SizeIs(51));
  EXPECT_THAT(m_log, ElementsAre("failed (0) to extract the file: " + m_out +
                                 "/IMG_0001.JPG: a file of this name exists "
                                 "(NSCocoaErrorDomain 516)"));
  fs::remove(m_out + "/IMG_0001 1.JPG");
  fs::remove(m_out + "/IMG_0001 50.JPG");
  m_item.extract(m_out);
  m_item.extract(m_out);
  EXPECT_EQ(read("IMG_0001 1.JPG"), Photos::contentOf(m_item.path()));
  EXPECT_EQ(read("IMG_0001 50.JPG"), Photos::contentOf(m_item.path()));
  EXPECT_THAT(m_log, SizeIs(1));
}

// The number of a copy that failed for another reason is not tried again.
TEST_F(ImageItemTest, numbersOnAfterAnotherFailure) {
  const std::string longest = std::string(251, 'a') + ".JPG";
  writeTaken(longest);
  writeTaken("IMG_0001.JPG");
  m_item.setPath("/b/" + longest);
  m_item.extract(m_out);
  ASSERT_THAT(m_log, SizeIs(1));
  EXPECT_THAT(m_log.front(), testing::HasSubstr("File name too long"));
  m_item.setPath("/b/IMG_0001.JPG");
  m_item.extract(m_out);
  m_item.extract(m_out);
  EXPECT_THAT(written(), ElementsAre("IMG_0001 1.JPG", "IMG_0001 2.JPG", "IMG_0001.JPG", longest));
}

TEST_F(ImageItemTest, logsALineForEachFailure) {
  struct Case {
    std::string path, destination, reason;
  };
  const std::string nul("/b/a\0.jpg", 9);
  for (const Case& c :
       {Case{"/b/..", m_out, "/b/..: this is not the name of a file (NSCocoaErrorDomain 514)"},
        Case{nul, m_out, "/b/a\\x00.jpg: this is not the name of a file (NSCocoaErrorDomain 514)"},
        Case{"", m_out, ": this is not the name of a file (NSCocoaErrorDomain 514)"},
        Case{"/b/unreadable.jpg", m_out,
             "/b/unreadable.jpg: the file cannot be read (NSCocoaErrorDomain 256)"},
        Case{"/b/1.jpg", "/no", "/no/1.jpg: No such file or directory (NSPOSIXErrorDomain 2)"},
        Case{"/b/1.jpg", m_tree.write("file", ""),
             m_tree.path("file/1.jpg") + ": Not a directory (NSPOSIXErrorDomain 20)"}}) {
    m_log.clear();
    ImageItem(c.path, m_photos).extract(c.destination);
    EXPECT_THAT(m_log, ElementsAre("failed (0) to extract the file: " + c.reason));
  }
  EXPECT_THAT(written(), IsEmpty());
}

TEST_F(ImageItemTest, failsOnceWhenTheDestinationVanishes) {
  m_photos.m_onRead = [&] { fs::remove_all(m_out); };
  m_item.extract(m_out);
  EXPECT_THAT(m_log, SizeIs(1));
  EXPECT_FALSE(fs::exists(m_out));
}

TEST_F(ImageItemTest, isWrittenIntoTheTemporaryFolderAndCopiedNowhere) {
  for (int i = 0; i < 2; ++i) {
    m_item.extract(temporaryFolder() + "/");
  }
  EXPECT_TRUE(fs::is_regular_file(temporaryFolder() + "/IMG_0001.JPG"));
  EXPECT_FALSE(fs::exists(temporaryFolder() + "/IMG_0001 1.JPG"));
  EXPECT_THAT(m_log, IsEmpty());
}

TEST_F(ImageItemTest, doesNotChangeWhatWasExportedUnderTheSameName) {
  ImageItem other("/b/Media/DCIM/101/IMG_0001.JPG", m_photos);
  m_item.extract(m_out);
  other.extract(m_out);
  other.extract(temporaryFolder());
  EXPECT_EQ(read("IMG_0001.JPG"), Photos::contentOf(m_item.path()));
  EXPECT_EQ(read("IMG_0001 1.JPG"), Photos::contentOf(other.path()));
}

TEST_F(ImageItemTest, arrivesWithoutATemporaryFolder) {
  const std::string folder = temporaryFolder();
  fs::remove_all(folder);
  m_item.extract(m_out);
  m_item.extract(m_out);
  EXPECT_THAT(written(), ElementsAre("IMG_0001 1.JPG", "IMG_0001.JPG"));
  EXPECT_EQ(read("IMG_0001 1.JPG"), Photos::contentOf(m_item.path()));
  EXPECT_THAT(m_log, IsEmpty());
  m_item.extract(folder);
  EXPECT_THAT(m_log, SizeIs(1));
  fs::create_directory(folder);  // other tests of this process go on using it
}

TEST_F(ImageItemTest, hasOneBufferForAllPhotosOfAWorker) {
  Bytes buffer(1000);
  EXPECT_FALSE(m_item.extractPhoto(m_out, buffer).error);
  EXPECT_FALSE(m_item.extractPhoto(m_out, buffer).error);
  EXPECT_EQ(m_photos.m_lastReuse, 1000u);
  EXPECT_EQ(buffer.capacity(), 1000u);
}

TEST_F(ImageItemTest, offersThePasteboardWhatItsTypeAllows) {
  using Types = std::vector<std::string_view>;
  for (const auto& [name, types] :
       std::map<std::string, Types>{{"a.JPG", {"text/uri-list", "image/jpeg"}},
                                    {"a.pNg", {"text/uri-list", "image/png"}},
                                    {"a.jpeg", {"text/uri-list"}},
                                    {"a.HEIC", {"text/uri-list"}},
                                    {"jpg", {"text/uri-list"}}}) {
    const ImageItem item("/b/" + name, m_photos);
    EXPECT_EQ(item.writableTypesForPasteboard(), types) << name;
    EXPECT_EQ(item.writingOptionsForTypePasteboard(types.back()), 512u);
  }
}

TEST_F(ImageItemTest, givesThePasteboardItsData) {
  ImageItem item("/b/IMG 0002.PNG", m_photos);
  for (const char* type : {"image/png", "image/jpeg"}) {
    EXPECT_EQ(textOf(item.pasteboardPropertyListForType(type).value()),
              Photos::contentOf(item.path()));
  }
  EXPECT_FALSE(item.pasteboardPropertyListForType("text/plain"));
  const std::string file = temporaryFolder() + "/IMG 0002.PNG";
  EXPECT_FALSE(fs::exists(file));
  EXPECT_EQ(textOf(item.pasteboardPropertyListForType("text/uri-list").value()),
            fileURL(file) + "\r\n");
  EXPECT_TRUE(fs::exists(file));
  ImageItem unreadable("/b/unreadable.jpg", m_photos);
  EXPECT_FALSE(unreadable.pasteboardPropertyListForType("text/uri-list"));
  EXPECT_FALSE(unreadable.pasteboardPropertyListForType("image/jpeg"));
}

TEST_F(ImageItemTest, asksForNumbersOnlyWhereANameIsTaken) {
  FileManager manager;
  FileError error = FileError::ofSystem(ENOSPC, m_out + "/IMG_0001.JPG");
  const CopySource source{{}, bytesOf("x")};
  EXPECT_EQ(m_item.fileManagerShouldProceedAfterErrorCopyingItemAtURLToURL(manager, error, source,
                                                                           error.path),
            false);
  EXPECT_THAT(written(), IsEmpty());
  error = FileError::fileExists(error.path);
  EXPECT_EQ(m_item.fileManagerShouldProceedAfterErrorCopyingItemAtURLToURL(manager, error, source,
                                                                           error.path),
            true);
  EXPECT_THAT(written(), ElementsAre("IMG_0001 1.JPG"));
  EXPECT_EQ(m_item.fileManagerShouldMoveItemAtURLToURL(manager, "a", "b"), true);
}

// Photos of one name, from several threads at once: each arrives with its own bytes. Letter by
// letter, so that one is being written while the next begins.
TEST_F(ImageItemTest, sharesNoTemporaryFileWithAPhotoOfTheSameName) {
  constexpr int threads = 4;
  constexpr int photosPerThread = 50;
  Faults slow;
  slow.maximumWrite = 1;
  {
    std::vector<std::jthread> workers;
    for (int t = 0; t < threads; ++t) {
      const std::string folder = m_tree.makeFolder("out/" + std::to_string(t));
      workers.emplace_back([this, t, folder, slow] {
        Bytes buffer;
        for (int i = 0; i < photosPerThread; ++i) {
          ImageItem item("/b/" + std::to_string(t) + "/" + std::to_string(i) + "/IMG_0001.JPG",
                         m_photos);
          const FaultyFileSystem fileSystem(slow);
          const ExtractOutcome outcome = item.extractPhoto(folder, buffer);
          EXPECT_FALSE(outcome.error);
          EXPECT_EQ(m_tree.read(outcome.written.substr(m_tree.root().size())),
                    Photos::contentOf(item.path()));
          fs::remove(outcome.written);
        }
      });
    }
  }
  EXPECT_THAT(m_log, IsEmpty());
}

// A temporary folder may fold letter case: a name counts as taken in any.
TEST(FileNameReservation, belongsToOneThread) {
  std::atomic<int> holders = 0;
  std::vector<std::jthread> workers;
  for (const char* name : {"IMG_0001.JPG", "img_0001.jpg", "IMG_0001.jpg", "IMG_0001.JPG"}) {
    workers.emplace_back([&holders, name] {
      for (int i = 0; i < 1000; ++i) {
        const FileNameReservation reservation(name);
        EXPECT_EQ(++holders, 1);
        std::this_thread::yield();
        --holders;
      }
    });
  }
}

TEST_F(ImageItemTest, keepsNoFileOpen) {
  const auto openFiles = [] {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  };
  if (!fs::exists("/proc/self/fd")) {
    GTEST_SKIP() << "needs /proc";
  }
  m_item.extract(m_out);  // the temporary folder stays open
  const auto before = openFiles();
  m_item.extract(m_out);
  m_item.extract("/no");
  ImageItem("/b/unreadable.jpg", m_photos).extract(m_out);
  m_item.pasteboardPropertyListForType(fileURLType);
  EXPECT_EQ(openFiles(), before);
}

}  // namespace
}  // namespace snaplift
