#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "backups/BackupController.h"
#include "foundation/Log.h"
#include "samples/BackupWriter.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BackupControllerTest : public testing::Test {
protected:
  void writeBackup(const std::string& name, std::optional<std::string> device, std::int64_t date,
                   std::optional<std::string> version = "5.0") {
    samples::writeBackup(m_tree.path("root/" + name), {.generation = samples::Generation::Five,
                                                       .deviceName = std::move(device),
                                                       .productVersion = std::move(version),
                                                       .date = instantFromUnixTime(date)});
  }

  // "device: folder folder", device by device.
  static std::vector<std::string> outline(const BackupController& controller) {
    std::vector<std::string> lines;
    for (const auto& device : controller.devices()) {
      std::string line = device->name().value_or("(none)") + ":";
      for (const auto& backup : device->backups()) {
        line += " " + backup->path().substr(backup->path().find("/root/") + 6);
      }
      lines.push_back(line);
    }
    return lines;
  }

  std::vector<std::string> scan() { return outline(BackupController(m_tree.path("root"))); }

  TemporaryTree m_tree;
  std::vector<std::string> m_log;
  LogCapture m_capture{[this](std::string line) { m_log.push_back(std::move(line)); }};
};

TEST_F(BackupControllerTest, groupsByNameAndOrdersByDate) {
  writeBackup("a1", "Anna", 10);
  writeBackup("a2", "Anna", 40);
  writeBackup("b1", "Ben", 30);
  writeBackup("b2", "ben", 20);
  writeBackup("n1", std::nullopt, 15);
  writeBackup("n2", std::nullopt, 25);
  writeBackup("equal2", "Anna", 10);
  writeBackup("z", "Aaron", 30);
  ASSERT_EQ(::symlink(".", m_tree.path("way").c_str()), 0);
  for (const char* root : {"root", "way/root"}) {
    const BackupController controller(m_tree.path(root));
    EXPECT_THAT(outline(controller), ElementsAre("Anna: a2 a1 equal2", "Aaron: z", "Ben: b1",
                                                 "(none): n2 n1", "ben: b2"));
    EXPECT_EQ(controller.backups()[0]->path(), m_tree.path(root) + "/a2");
    for (const auto& device : controller.devices()) {
      EXPECT_EQ(controller.deviceOf(*device->backups()[0]), device.get());
    }
  }
}

TEST_F(BackupControllerTest, aRootThatIsNoneHasNoDevices) {
  EXPECT_THAT(scan(), IsEmpty());
  m_tree.write("root/file", "");
  EXPECT_THAT(scan(), IsEmpty());
  EXPECT_THAT(outline(BackupController(m_tree.path("root/file"))), IsEmpty());
  EXPECT_THAT(outline(BackupController("")), IsEmpty());
  EXPECT_THAT(m_log, IsEmpty());
}

TEST_F(BackupControllerTest, oneBadFolderNeverHidesTheOthers) {
  writeBackup("good", "Anna", 1);
  writeBackup("old", "Anna", 2, "0.9");
  writeBackup("of no version", "Anna", 2, std::nullopt);
  writeBackup("\xff\n name", "Anna", 3);
  m_tree.makeFolder("root/empty");
  m_tree.write("root/Info.plist", "a file in the place of a folder");
  ASSERT_EQ(::mkfifo(m_tree.path("root/fifo").c_str(), 0600), 0);
  ASSERT_EQ(::symlink("good", m_tree.path("root/link").c_str()), 0);
  writeBackup("locked", "Anna", 4);
  ASSERT_EQ(::chmod(m_tree.path("root/locked").c_str(), 0), 0);
  ASSERT_EQ(::chmod(m_tree.root().c_str(), 0755), 0);
  const uid_t user = ::geteuid();
  ::seteuid(user == 0 ? 65534 : user);  // permissions are nothing to the superuser
  const std::vector<std::string> devices = scan();
  ::seteuid(user);
  EXPECT_THAT(devices, ElementsAre("Anna: \xff\n name good"));
  const std::string root = m_tree.path("root");
  EXPECT_THAT(m_log,
              testing::UnorderedElementsAre(
                  "processing " + root + "/good for Anna at version 5.0",
                  "processing " + root + "/\xff\\n name for Anna at version 5.0",
                  "no decoder available for version 0.9 backup " + root + "/old",
                  "no decoder available for version (null) backup " + root + "/of no version",
                  "path: " + root + "/empty has no info.plist and is therefore not a valid backup",
                  "no permission to read the folder: " + root + "/locked"));
}

TEST_F(BackupControllerTest, opensAndClosesFoldersOfBackups) {
  writeBackup("a", "Anna", 1);
  writeBackup("b", "Ben", 2);
  writeBackup("../more/c", "Anna", 3);
  const auto found = [&](const std::vector<std::string>& names) {
    std::vector<std::unique_ptr<BackupModel>> backups;
    for (const std::string& name : names) {
      backups.push_back(BackupModel::initWithBackupAtPath(m_tree.path("root/" + name)));
    }
    return backups;
  };
  BackupController controller(m_tree.path("root"));
  BackupModel* const a = controller.devices()[1]->backups()[0].get();
  BackupModel* const c = controller.addBackups("more", found({"../more/c"})).at(0);
  EXPECT_THAT(outline(controller), ElementsAre("Anna: ../more/c a", "Ben: b"));
  EXPECT_THAT(controller.addBackups("both", found({"../more/c", "a"})), ElementsAre(c, a));
  EXPECT_THAT(controller.addBackups("none", {}), IsEmpty());
  EXPECT_THAT(controller.folders(), ElementsAre(m_tree.path("root"), "more", "both"));
  EXPECT_THAT(controller.backups(), testing::SizeIs(3));

  controller.closeFolder("more");  // "both" leads to it, too
  EXPECT_THAT(outline(controller), ElementsAre("Anna: ../more/c a", "Ben: b"));
  controller.closeFolder("both");
  EXPECT_THAT(outline(controller), ElementsAre("Ben: b", "Anna: a"));
  controller.closeFolder(m_tree.path("root"));
  EXPECT_THAT(outline(controller), IsEmpty());
  EXPECT_THAT(controller.folders(), IsEmpty());

  // What is closed lives on, and is the same when it comes back.
  EXPECT_THAT(c->imageItems(), IsEmpty());
  EXPECT_THAT(controller.addBackups("again", found({"../more/c"})), ElementsAre(c));
  controller.closeFolder("again");
  writeBackup("../more/c", "Anna", 9);
  EXPECT_NE(controller.addBackups("changed", found({"../more/c"})).at(0), c);

  // But for one that was read while its disk failed.
  m_tree.write("root/../more/c/Manifest.mbdb", "");
  BackupModel* const failed = controller.addBackups("failed", found({"../more/c"})).at(0);
  failed->imageItems();
  controller.closeFolder("changed");
  controller.closeFolder("failed");
  EXPECT_NE(controller.addBackups("back", found({"../more/c"})).at(0), failed);
}

}  // namespace
}  // namespace snaplift
