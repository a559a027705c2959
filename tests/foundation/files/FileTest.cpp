#include <string>
#include <utility>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/File.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using testing::UnorderedElementsAre;

std::string contentOf(const std::optional<Bytes>& bytes) {
  return bytes ? std::string(textOf(*bytes)) : "(nothing)";
}

TEST(File, readsRegularFilesWholeAndReusesTheStorageOfAnOldBuffer) {
  TemporaryTree tree;
  const std::string content("a\0b\xff\n", 5);
  tree.write("file", content);
  tree.write("empty", "");
  tree.write("large", std::string(1000, 'l'));
  EXPECT_EQ(contentOf(readFile(tree.path("empty"))), "");
  EXPECT_EQ(contentOf(readFile(tree.path("missing"))), "(nothing)");
  std::optional<Bytes> large = readFile(tree.path("large"));
  ASSERT_TRUE(large);
  const std::uint8_t* storage = large->data();
  const std::optional<Bytes> small = readFile(tree.path("file"), std::move(*large));
  EXPECT_EQ(contentOf(small), content);
  EXPECT_EQ(small->data(), storage);
}

TEST(File, answersAtOnceForWhatIsNoRegularFile) {
  TemporaryTree tree;
  tree.write("target", "outside");
  ASSERT_EQ(::mkfifo(tree.path("fifo").c_str(), 0600), 0);
  ASSERT_EQ(::mknod(tree.path("socket").c_str(), S_IFSOCK | 0600, 0), 0);
  ASSERT_EQ(::symlink(tree.path("target").c_str(), tree.path("link").c_str()), 0);
  ASSERT_EQ(::mkdir(tree.path("folder").c_str(), 0700), 0);
  for (const char* name : {"fifo", "socket", "link", "folder"}) {
    EXPECT_EQ(contentOf(readFile(tree.path(name))), "(nothing)") << name;
  }
  EXPECT_EQ(contentOf(readFile("/dev/zero")), "(nothing)");

  EXPECT_EQ(fileAttributes(tree.path("fifo"))->type, FileType::Other);
  EXPECT_EQ(fileAttributes(tree.path("link"))->type, FileType::Link);
  EXPECT_EQ(fileAttributes(tree.path("folder"))->type, FileType::Folder);
  EXPECT_FALSE(fileAttributes(tree.path("missing")));
}

TEST(File, believesNoSizeThatHolesClaim) {
  TemporaryTree tree;
  tree.write("hole", "");
  tree.write("half", std::string(4 << 20, 'x'));
  ASSERT_EQ(::truncate(tree.path("hole").c_str(), off_t{64} << 30), 0);
  ASSERT_EQ(::truncate(tree.path("half").c_str(), 8 << 20), 0);
  EXPECT_FALSE(readFile(tree.path("hole")));
  ASSERT_EQ(::truncate(tree.path("hole").c_str(), 16 << 20), 0);
  EXPECT_FALSE(readFile(tree.path("hole")));
  const std::optional<Bytes> half = readFile(tree.path("half"));
  ASSERT_TRUE(half);
  EXPECT_EQ(half->size(), std::size_t{8} << 20);
  EXPECT_EQ(half->data()[0], 'x');
  EXPECT_EQ(readBeginning(tree.path("half"), 5)->size(), 5u);
  EXPECT_EQ(readBeginning(tree.path("half"), 9 << 20)->size(), half->size());
  EXPECT_FALSE(readBeginning(tree.path("hole"), 5));
}

TEST(File, listsHiddenAndOddNamesAndTellsSubfoldersFromLinksToThem) {
  TemporaryTree tree;
  tree.write("file", "");
  for (const char* name : {".hidden", "\xff\xfe", "line\nbreak"}) {
    tree.makeFolder(name);
  }
  ASSERT_EQ(::symlink(".hidden", tree.path("link").c_str()), 0);
  ASSERT_EQ(::mkfifo(tree.path("fifo").c_str(), 0600), 0);
  std::error_code error;
  EXPECT_THAT(subfolders(tree.root(), error),
              UnorderedElementsAre(".hidden", "\xff\xfe", "line\nbreak"));
  EXPECT_FALSE(error);
  EXPECT_THAT(folderEntries(tree.root()),
              UnorderedElementsAre("file", ".hidden", "\xff\xfe", "line\nbreak", "link", "fifo"));
  EXPECT_TRUE(folderEntries(tree.path("missing")).empty());
  EXPECT_TRUE(subfolders(tree.path("file"), error).empty());
  EXPECT_EQ(error, std::errc::not_a_directory);
}

TEST(File, findsNamesWithoutRegardToLetterCase) {
  using Names = std::vector<const char*>;
  for (const auto& [present, found] :
       {std::pair(Names{"info.plist", "Info.plist"}, "info.plist"),
        std::pair(Names{"Info.plist", "INFO.PLIST"}, "Info.plist"),
        std::pair(Names{"INFO.plist", "INFO.PLIST", "x"}, "INFO.PLIST")}) {
    TemporaryTree tree;
    for (const char* name : present) {
      tree.write(name, name);
    }
    EXPECT_EQ(findFile(tree.path(""), "info.plist"), tree.path(found));
    const auto content = OpenFolder(tree.root()).readFoundFile("info.plist");
    EXPECT_EQ(content ? textOf(content->bytes) : "(nothing)", found);
  }
  TemporaryTree tree;
  tree.write("Info.plist2", "");
  EXPECT_EQ(findFile(tree.root(), "info.plist"), tree.path("info.plist"));
  EXPECT_FALSE(OpenFolder(tree.root()).readFoundFile("info.plist"));
}

TEST(File, readsWhatItFindsWithItsAttributes) {
  TemporaryTree tree;
  tree.write("Info.plist", "content");
  const timespec times[2] = {{1, 0}, {1234567890, 987654321}};
  ASSERT_EQ(::utimensat(AT_FDCWD, tree.path("Info.plist").c_str(), times, 0), 0);
  const auto content = OpenFolder(tree.root()).readFoundFile("info.plist");
  const auto attributes = fileAttributes(tree.path("Info.plist"));
  ASSERT_TRUE(content && attributes);
  EXPECT_EQ(content->modificationDate, instantFromUnixTime(1234567890, 987654000));
  EXPECT_EQ(attributes->modificationDate, content->modificationDate);
  EXPECT_EQ(attributes->size, 7u);
  // What bears the exact name counts, though nothing can be read there.
  ASSERT_EQ(::symlink("Info.plist", tree.path("info.plist").c_str()), 0);
  EXPECT_FALSE(OpenFolder(tree.root()).readFoundFile("info.plist"));
}

}  // namespace
}  // namespace snaplift
