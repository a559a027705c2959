#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <dirent.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "backups/BackupSearch.h"
#include "foundation/Log.h"
#include "samples/BackupWriter.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class BackupSearchTest : public testing::Test {
protected:
  void writeBackup(const std::string& name) const {
    samples::writeBackup(m_tree.path(name), {.deviceName = "Anna", .productVersion = "5.0"});
  }

  // The backups that are found, relative to the test's own folder, as they come.
  std::vector<std::string> search(const std::vector<std::string>& names,
                                  std::stop_token stop = {}) {
    std::vector<std::string> folders, found;
    for (const std::string& name : names) {
      folders.push_back(m_tree.path(name));
    }
    m_result = searchForBackups(
        folders,
        {.found =
             [&](auto backup) { found.push_back(backup->path().substr(m_tree.root().size() + 1)); },
         .looking = [&](const std::string& folder) { ++m_looks[folder]; },
         .unreadable = [&](const std::string& folder,
                           const std::error_code&) { m_unreadable.push_back(folder); }},
        std::move(stop));
    EXPECT_EQ(m_result.backups, found.size());
    EXPECT_TRUE(std::ranges::all_of(m_looks, [](const auto& look) { return look.second == 1; }));
    m_looks.clear();
    return found;
  }

  TemporaryTree m_tree;
  BackupSearchResult m_result;
  std::map<std::string, int> m_looks;
  std::vector<std::string> m_unreadable, m_log;
  LogCapture m_capture{[this](std::string line) { m_log.push_back(std::move(line)); }};
};

TEST_F(BackupSearchTest, findsBackupsBelowFoldersOfAnyKindEachOnce) {
  const std::string root = "disk/Users/anna/Library/Application Support/MobileSync/Backup";
  const std::string b = root + "/b", c = "disk/old/copies/c";
  writeBackup(b);
  writeBackup(c);
  writeBackup("disk/old/copies/c/inside a backup");
  m_tree.write("disk/old/Some.app/Contents/Info.plist", "not of a handset");
  ASSERT_EQ(::symlink("disk", m_tree.path("way").c_str()), 0);
  struct Case {
    std::vector<std::string> named, found;
  };
  const Case cases[] = {{{b}, {b}},
                        {{root}, {b}},
                        {{"disk/Users/anna"}, {b}},
                        {{"disk/Users"}, {b}},
                        {{"disk"}, {b, c}},
                        {{c}, {c}},
                        {{"disk/old/Some.app"}, {}},
                        {{"nowhere"}, {}},
                        {{"disk", c, "way", "disk/old", "way/old/copies/c"}, {b, c}},
                        {{"way/old", "disk", "disk"}, {"way/old/copies/c", b}}};
  for (const Case& each : cases) {
    EXPECT_THAT(search(each.named), testing::UnorderedElementsAreArray(each.found));
  }
  m_log.clear();
  search({"disk"});
  EXPECT_THAT(m_log, testing::Each(testing::HasSubstr("processing ")));
}

TEST_F(BackupSearchTest, looksIntoKnownPlacesFirst) {
  const std::vector<std::string> known = {
      "d/Library/Application Support/MobileSync/Backup/b",
      "d/MobileSync/Backup/b",
      "d/Backup/b",
      "d/Maker/MobileSync/Backup/b",
      "d/AppData/Roaming/Maker/MobileSync/Backup/b",
      "d/Application Data/Maker/MobileSync/Backup/b",
      "d/Users/u/Library/Application Support/MobileSync/Backup/b",
      "d/Users/u/Maker/MobileSync/Backup/b",
      "d/Users/u/AppData/Roaming/Maker/MobileSync/Backup/b",
      "d/Documents and Settings/u/Application Data/Maker/MobileSync/Backup/b"};
  std::vector<std::string> expected = known;
  expected.insert(expected.end(), {"d/elsewhere/b", "d/deeper/x/b"});
  for (const std::string& backup : expected) {
    writeBackup(backup);
  }
  std::vector<std::string> found = search({"d"});
  ASSERT_EQ(found.size(), expected.size());
  EXPECT_EQ(found.back(), "d/deeper/x/b");
  EXPECT_EQ(found, expected);
}

TEST_F(BackupSearchTest, isNotLedAstray) {
  writeBackup("outside/b");
  writeBackup("disk/good");
  ASSERT_EQ(::symlink(m_tree.path("outside").c_str(), m_tree.path("disk/link").c_str()), 0);
  ASSERT_EQ(::symlink("..", m_tree.path("disk/good way up").c_str()), 0);
  m_tree.makeFolder("disk/fifo");
  ASSERT_EQ(::mkfifo(m_tree.path("disk/fifo/Info.plist").c_str(), 0600), 0);
  m_tree.write("disk/fifo/Manifest.plist", "");
  writeBackup("disk/\xff\xfe\n/b");
  EXPECT_THAT(search({"disk"}), UnorderedElementsAre("disk/good", "disk/\xff\xfe\n/b"));
  EXPECT_THAT(m_log, testing::Contains("path: " + m_tree.path("disk/fifo") +
                                       " has no info.plist and is therefore not a valid backup"));

  // A folder that is mounted below itself, where the test may do that.
  m_tree.makeFolder("disk/sub/cycle");
  if (::mount(m_tree.path("disk").c_str(), m_tree.path("disk/sub/cycle").c_str(), nullptr, MS_BIND,
              nullptr) == 0) {
    EXPECT_THAT(search({"disk"}), UnorderedElementsAre("disk/good", "disk/\xff\xfe\n/b"));
    EXPECT_THAT(search({"disk/sub/cycle"}), testing::SizeIs(2));  // it was named
    ::umount(m_tree.path("disk/sub/cycle").c_str());
  }
}

TEST_F(BackupSearchTest, endsInATreeWithoutABottom) {
  writeBackup("disk/good");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(m_tree.makeFolder("disk/deep"));
  for (int level = 0; level < 10'000; ++level) {
    ASSERT_EQ(::mkdir("d", 0700), 0);
    ASSERT_EQ(::chdir("d"), 0);
  }
  std::filesystem::current_path(before);
  EXPECT_THAT(search({"disk"}), ElementsAre("disk/good"));
  EXPECT_TRUE(m_result.tooDeep);
  EXPECT_THAT(search({"disk/good"}), ElementsAre("disk/good"));
  EXPECT_FALSE(m_result.tooDeep);
  std::system(("rm -rf " + m_tree.path("disk/deep")).c_str());
}

// More folders than wait in line.
TEST_F(BackupSearchTest, searchesEveryFolderOfALargeTree) {
  for (int i = 0; i < 40'000; ++i) {
    ASSERT_EQ(::mkdir(m_tree.makeFolder("disk/" + std::to_string(i % 4))
                          .append("/x" + std::to_string(i))
                          .c_str(),
                      0700),
              0);
  }
  writeBackup("disk/3/x39999/y/b");
  EXPECT_THAT(search({"disk"}), ElementsAre("disk/3/x39999/y/b"));
  EXPECT_EQ(m_result.folders, 40'000u + 1 + 4 + 1 + 1);
}

TEST_F(BackupSearchTest, tellsWhatCannotBeReadAndStopsWhenAsked) {
  writeBackup("disk/a/b");
  EXPECT_THAT(search({"gone", "disk"}), ElementsAre("disk/a/b"));
  EXPECT_THAT(m_unreadable, ElementsAre(m_tree.path("gone")));
  EXPECT_EQ(m_result.unreadable, 1u);
  std::stop_source stop;
  stop.request_stop();
  EXPECT_THAT(search({"disk"}, stop.get_token()), IsEmpty());
}

// The tree stays open, and what is in it readable for who has it open.
TEST_F(BackupSearchTest, noticesThatADiskIsUnmounted) {
  const std::string disk = m_tree.makeFolder("disk");
  if (::mount("none", disk.c_str(), "tmpfs", 0, nullptr) != 0) {
    GTEST_SKIP() << "only root may mount disks";
  }
  for (const char* backup : {"disk/a/b", "elsewhere"}) {
    writeBackup(backup);
    const auto result = searchForBackups(
        {disk}, {.found = [](const auto&) {},
                 .looking = [&](const auto&) { ::umount2(disk.c_str(), MNT_DETACH); }});
    EXPECT_TRUE(result.diskIsGone) << backup;
    ::mount("none", disk.c_str(), "tmpfs", 0, nullptr);
  }
  ::umount(disk.c_str());
}

}  // namespace
}  // namespace snaplift
