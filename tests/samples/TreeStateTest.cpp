#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "support/TemporaryTree.h"
#include "support/TreeState.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;

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

}  // namespace
}  // namespace snaplift
