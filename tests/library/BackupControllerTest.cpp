#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/Log.h"
#include "library/BackupController.h"
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
        line += " " + backup->path().substr(controller.basePath().size() + 1);
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
  EXPECT_THAT(scan(), ElementsAre("Anna: a2 a1 equal2", "Ben: b1", "(none): n2 n1", "ben: b2"));
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
  writeBackup("\xff\n name", "Anna", 3);
  m_tree.makeFolder("root/empty");
  m_tree.write("root/Info.plist", "a file in the place of a folder");
  ASSERT_EQ(::mkfifo(m_tree.path("root/fifo").c_str(), 0600), 0);
  ASSERT_EQ(::symlink("good", m_tree.path("root/link").c_str()), 0);
  ASSERT_EQ(::mkdir(m_tree.path("root/locked").c_str(), 0), 0);
  m_log.clear();
  EXPECT_THAT(scan(), ElementsAre("Anna: \xff\n name good"));
  const std::string root = m_tree.path("root");
  EXPECT_THAT(
      m_log,
      testing::UnorderedElementsAre(
          "processing " + root + "/good for Anna at version 5.0",
          "processing " + root + "/\xff\\n name for Anna at version 5.0",
          "no decoder available for version 0.9 backup " + root + "/old",
          "path: " + root + "/empty has no info.plist and is therefore not a valid backup",
          "path: " + root + "/locked has no info.plist and is therefore not a valid backup"));
}

TEST_F(BackupControllerTest, aRootMayBeALink) {
  writeBackup("b", "Anna", 1);
  ASSERT_EQ(::symlink("root", m_tree.path("way").c_str()), 0);
  const BackupController controller(m_tree.path("way"));
  EXPECT_THAT(outline(controller), ElementsAre("Anna: b"));
  EXPECT_EQ(controller.devices()[0]->backups()[0]->path(), m_tree.path("way/b"));
}

}  // namespace
}  // namespace snaplift
