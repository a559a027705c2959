#include <filesystem>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backups/ImageItem.h"
#include "foundation/Log.h"
#include "foundation/files/FileURL.h"
#include "foundation/files/Path.h"
#include "foundation/files/TemporaryFolder.h"
#include "support/PhotoSource.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ImageItemTest : public testing::Test {
protected:
  std::vector<std::string> written() const { return m_tree.list("out"); }
  std::string read(const std::string& name) const { return m_tree.read("out/" + name); }
  void writeTaken(const std::string& name) const { m_tree.write("out/" + name, "old"); }

  TemporaryTree m_tree;
  std::string m_out = m_tree.makeFolder("out");
  test::PhotoSource m_photos{m_tree.root()};
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
    EXPECT_EQ(item.extract(tree.root()), std::nullopt);
    EXPECT_EQ(tree.read(c.written), item.path());
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
  EXPECT_EQ(read("IMG_0001 1.JPG"), m_item.path());
  EXPECT_EQ(read("IMG_0001 50.JPG"), m_item.path());
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
        Case{"/b/lost.jpg", m_out, "/b/lost.jpg: the file cannot be read (NSCocoaErrorDomain 256)"},
        Case{"/b/1.jpg", "/no", "/no/1.jpg: No such file or directory (NSPOSIXErrorDomain 2)"},
        Case{"/b/1.jpg", m_tree.write("file", ""),
             m_tree.path("file/1.jpg") + ": Not a directory (NSPOSIXErrorDomain 20)"}}) {
    m_log.clear();
    ImageItem(c.path, m_photos).extract(c.destination);
    EXPECT_THAT(m_log, ElementsAre("failed (0) to extract the file: " + c.reason));
  }
  m_photos.isEncrypted = true;
  m_tree.write("files/a.jpg", "secret");
  for (const char* path : {"files/a.jpg", "b.jpg"}) {
    ImageItem(path, m_photos).extract(m_out);
    EXPECT_THAT(m_log.back(), testing::HasSubstr("the backup is encrypted"));
  }
  m_photos.isEncrypted = false;
  EXPECT_THAT(written(), IsEmpty());
  m_log.clear();
  m_photos.onRead = [&](const std::string&) { fs::remove_all(m_out); };
  m_item.extract(m_out);
  EXPECT_THAT(m_log, SizeIs(1));
  EXPECT_FALSE(fs::exists(m_out));
}

// The one folder in which a name belongs to the last photo.
TEST_F(ImageItemTest, replacesItselfInTheTemporaryFolderAlone) {
  ImageItem other("/b/Media/DCIM/101/IMG_0001.JPG", m_photos);
  m_item.extract(temporaryFolder() + "/");
  fs::create_hard_link(temporaryFolder() + "/IMG_0001.JPG", m_out + "/elsewhere");
  other.extract(temporaryFolder());
  EXPECT_EQ(read("elsewhere"), m_item.path());
  fs::copy(temporaryFolder() + "/IMG_0001.JPG", m_out + "/copy");
  EXPECT_EQ(read("copy"), other.path());
  EXPECT_FALSE(fs::exists(temporaryFolder() + "/IMG_0001 1.JPG"));
  EXPECT_THAT(m_log, IsEmpty());
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
    EXPECT_EQ(item.writingOptionsForTypePasteboard(types.back()), 512U);
  }
}

TEST_F(ImageItemTest, givesThePasteboardItsData) {
  ImageItem item("/b/IMG 0002.PNG", m_photos);
  for (const char* type : {"image/png", "image/jpeg"}) {
    EXPECT_EQ(textOf(item.pasteboardPropertyListForType(type).value()), item.path());
  }
  EXPECT_FALSE(item.pasteboardPropertyListForType("text/plain"));
  const std::string file = temporaryFolder() + "/IMG 0002.PNG";
  EXPECT_FALSE(fs::exists(file));
  EXPECT_EQ(textOf(item.pasteboardPropertyListForType("text/uri-list").value()),
            fileURL(file) + "\r\n");
  EXPECT_TRUE(fs::exists(file));
  for (const bool isEncrypted : {false, true}) {
    m_photos.isEncrypted = isEncrypted;
    ImageItem none(isEncrypted ? "/b/a.jpg" : "/b/lost.jpg", m_photos);
    EXPECT_FALSE(none.pasteboardPropertyListForType("text/uri-list"));
    EXPECT_FALSE(none.pasteboardPropertyListForType("image/jpeg"));
  }
}

TEST_F(ImageItemTest, keepsNoFileOpen) {
  const auto openFiles = [] {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  };
  m_item.extract(temporaryFolder());  // which stays open
  const auto before = openFiles();
  m_item.extract(m_out);
  m_item.extract("/no");
  ImageItem("/b/lost.jpg", m_photos).extract(m_out);
  m_item.pasteboardPropertyListForType(fileURLType);
  EXPECT_EQ(openFiles(), before);
}

}  // namespace
}  // namespace snaplift
