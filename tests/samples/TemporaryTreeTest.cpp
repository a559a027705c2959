#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TemporaryTree.h"
#include "support/TreeState.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

TEST(TemporaryTree, leavesNothingBehind) {
  std::string root;
  {
    const TemporaryTree tree;
    const TemporaryTree other;
    root = tree.root();
    EXPECT_NE(root, other.root());
    tree.write("a/b/file", "x");
    fs::create_symlink("/", tree.path("a/link"));
    fs::permissions(tree.path("a/b"), fs::perms::none);
    fs::permissions(tree.path("a"), fs::perms::none);
    fs::permissions(tree.path("a"), fs::perms::owner_all);
    EXPECT_THAT(tree.list("a"), testing::Contains("link"));
    fs::permissions(tree.path("a"), fs::perms::none);
  }
  EXPECT_FALSE(fs::exists(root));
}

TEST(TreeState, seesEveryChange) {
  const TemporaryTree tree;
  tree.write("folder/file", "one");
  fs::create_symlink("file", tree.path("folder/link"));
  const auto before = treeState(tree.root());
  std::ifstream(tree.path("folder/file")).get();
  EXPECT_EQ(treeState(tree.root()), before);

  const auto timeOfFile = fs::last_write_time(tree.path("folder/file"));
  const auto timeOfFolder = fs::last_write_time(tree.path("folder"));
  const auto restoreTimes = [&] {
    fs::last_write_time(tree.path("folder/file"), timeOfFile);
    fs::last_write_time(tree.path("folder"), timeOfFolder);
  };
  tree.write("folder/file", "two");  // the same length, and then the same time
  restoreTimes();
  EXPECT_NE(treeState(tree.root()), before);
  tree.write("folder/file", "one");
  restoreTimes();
  EXPECT_EQ(treeState(tree.root()), before);

  fs::last_write_time(tree.path("folder"), timeOfFolder + std::chrono::nanoseconds(1));
  EXPECT_NE(treeState(tree.root()), before);
  restoreTimes();
  fs::permissions(tree.path("folder/file"), fs::perms::owner_read);
  EXPECT_NE(treeState(tree.root()), before);
}

TEST(TreeState, doesNotFollowLinks) {
  const TemporaryTree tree;
  tree.write("inside/file", "x");
  tree.write("outside/file", "x");
  fs::create_directory_symlink("../outside", tree.path("inside/link"));
  const auto before = treeState(tree.path("inside"));
  EXPECT_THAT(tree.list("inside"), ElementsAre("file", "link"));
  EXPECT_EQ(before.size(), 3U);
  tree.write("outside/another", "y");
  EXPECT_EQ(treeState(tree.path("inside")), before);
}

}  // namespace
}  // namespace snaplift
