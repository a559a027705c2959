#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "faults/Volume.h"
#include "library/ExportDestination.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

TEST(ExportDestination, takesAFolder) {
  const TemporaryTree tree;
  tree.write("info.plist", "");  // no manifest beside it
  const std::string folder = tree.makeFolder("out");
  fs::create_directory_symlink(folder, tree.path("link"));
  tree.write("out/backup/Info.plist", "");  // backups below the destination do no harm
  tree.write("out/backup/Manifest.mbdb", "");
  for (const char* name : {"out", "out/", "out/../out", "link"}) {
    EXPECT_EQ(exportDestinationProblem(tree.path(name), {tree.path("out/backup")}), std::nullopt);
  }
}

TEST(ExportDestination, saysWhatIsWrongWithIt) {
  const TemporaryTree tree;
  tree.write("file", "");
  EXPECT_EQ(exportDestinationProblem(tree.path("none"), {}),
            "The folder \"" + tree.path("none") + "\" does not exist.");
  EXPECT_EQ(exportDestinationProblem("", {}), "The folder \"\" does not exist.");
  EXPECT_EQ(exportDestinationProblem(tree.path("file"), {}),
            "\"" + tree.path("file") + "\" is not a folder.");
  const std::string folder = tree.makeFolder("read-only");
  const auto volume = Volume::inMemory(folder, 4096);
  if (volume) {
    ASSERT_TRUE(volume->makeReadOnly());
  } else {
    fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
  }
  EXPECT_EQ(exportDestinationProblem(folder, {}),
            "Nothing can be written into the folder \"" + folder + "\".");
}

TEST(ExportDestination, isNoBackup) {
  const TemporaryTree tree;
  const std::string backup = tree.makeFolder("root/backup");
  tree.makeFolder("root/backup/a/b");
  tree.makeFolder("root/backup-2");
  fs::create_directory_symlink(tree.path("root/backup/a"), tree.path("link"));
  for (const char* name : {"root/backup", "root/backup/", "root/backup/a/b", "link", "link/b",
                           "root/backup-2/../backup/a"}) {
    const auto problem = exportDestinationProblem(tree.path(name), {tree.path("other"), backup});
    EXPECT_THAT(problem.value_or(""), HasSubstr("nothing is ever written into a backup")) << name;
  }
  for (const char* name : {"root", "root/backup-2", "link/../../backup-2"}) {
    EXPECT_EQ(exportDestinationProblem(tree.path(name), {backup}), std::nullopt) << name;
  }
}

TEST(ExportDestination, isNoFolderThatLooksLikeABackup) {
  for (const char* info : {"info.plist", "Info.plist", "INFO.PLIST"}) {
    for (const char* manifest : {"Manifest.mbdb", "manifest.plist", "Manifest.plist"}) {
      const TemporaryTree tree;
      const std::string inside = tree.makeFolder("backup/photos");
      tree.write(std::string("backup/") + info, "");
      EXPECT_EQ(exportDestinationProblem(inside, {}), std::nullopt);
      tree.write(std::string("backup/") + manifest, "");
      const auto problem = exportDestinationProblem(inside, {});
      EXPECT_EQ(problem, "\"" + inside + "\" lies in the backup \"" + tree.path("backup") +
                             "\", and nothing is ever written into a backup.");
    }
  }
}

}  // namespace
}  // namespace snaplift
