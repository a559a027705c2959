#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "backups/BackupAround.h"
#include "export/ExportDestination.h"
#include "faults/Volume.h"
#include "foundation/files/TemporaryFolder.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string problemWith(const std::string& destination,
                        const std::vector<std::string>& backups = {}) {
  const auto problem = exportDestinationProblem(destination, backups);
  return problem ? problem->text() : "";
}

TEST(ExportDestination, isAFolderInNoBackup) {
  const TemporaryTree tree;
  tree.write("info.plist", "");  // no manifest beside it
  tree.write("file", "");
  tree.write("root/backup/Info.plist", "");  // backups below the destination do no harm
  tree.write("root/backup/Manifest.mbdb", "");
  tree.makeFolder("root/backup/a/b");
  tree.makeFolder("root/backup-2");
  fs::create_directory_symlink(tree.path("root"), tree.path("way"));
  fs::create_directory_symlink(tree.path("root/backup/a"), tree.path("link"));
  const char* inside = "nothing is ever written into a backup";
  const std::pair<const char*, const char*> cases[] = {{"root", ""},
                                                       {"root/", ""},
                                                       {"root/../root", ""},
                                                       {"way", ""},
                                                       {"root/backup-2", ""},
                                                       {"link/../../backup-2", ""},
                                                       {"root/backup", inside},
                                                       {"root/backup/", inside},
                                                       {"root/backup/a/b", inside},
                                                       {"link", inside},
                                                       {"link/b", inside},
                                                       {"root/backup-2/../backup/a", inside}};
  for (const auto& [name, problem] : cases) {
    const std::vector<std::string> backups{tree.path("other"), tree.path("root/backup")};
    const std::string said = problemWith(tree.path(name), backups);
    EXPECT_EQ(!said.empty(), *problem != 0) << name;
    EXPECT_THAT(said, HasSubstr(problem)) << name;
  }
  EXPECT_EQ(problemWith(""), "The folder \"\" does not exist.");
  EXPECT_EQ(problemWith(tree.path("file")), "\"" + tree.path("file") + "\" is not a folder.");
  const std::string folder = tree.makeFolder("read-only");
  const auto volume = Volume::inMemory(folder, 4096);
  if (volume) {
    ASSERT_TRUE(volume->makeReadOnly());
  } else {
    fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
  }
  EXPECT_EQ(problemWith(folder), "Nothing can be written into the folder \"" + folder + "\".");
}

TEST(ExportDestination, isNoFolderThatLooksLikeABackup) {
  for (const char* info : {"info.plist", "Info.plist", "INFO.PLIST"}) {
    for (const char* manifest : {"Manifest.mbdb", "manifest.plist", "Manifest.plist"}) {
      const TemporaryTree tree;
      const std::string inside = tree.makeFolder("backup/photos");
      tree.write(std::string("backup/") + info, "");
      EXPECT_EQ(problemWith(inside), "");
      tree.write(std::string("backup/") + manifest, "");
      EXPECT_EQ(problemWith(inside), "\"" + inside + "\" lies in the backup \"" +
                                         tree.path("backup") +
                                         "\", and nothing is ever written into a backup.");
    }
  }
}

TEST(TemporaryFolderOfTheProcess, isNeverInABackup) {
  const TemporaryTree tree;
  tree.write("backup/Info.plist", "");
  tree.write("backup/Manifest.mbdb", "");
  tree.makeFolder("backup/inside");
  for (const char* chosen : {"backup", "backup/inside"}) {
    EXPECT_EXIT(
        {
          keepTemporaryFolderOutOfBackups();
          ::setenv("TMPDIR", tree.path(chosen).c_str(), 1);
          std::exit(temporaryFolder().starts_with("/var/tmp/") ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
  }
}

}  // namespace
}  // namespace snaplift
