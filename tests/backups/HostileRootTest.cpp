#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "backups/BackupController.h"
#include "foundation/Log.h"
#include "foundation/files/FileDescriptor.h"
#include "samples/BackupWriter.h"
#include "samples/PropertyListWriter.h"
#include "support/TemporaryTree.h"
#include "support/TreeState.h"

namespace snaplift {
namespace {

using samples::Generation;
using testing::Contains;
using testing::IsSubsetOf;

// Tells whether anything in a folder has been opened since.
class OpenWatch {
public:
  explicit OpenWatch(const std::string& folder) : m_queue(::inotify_init1(IN_NONBLOCK)) {
    ::inotify_add_watch(m_queue.get(), folder.c_str(), IN_OPEN | IN_MODIFY | IN_CREATE);
  }
  bool anything() const {
    char events[4096];
    return ::read(m_queue.get(), events, sizeof events) > 0;
  }

private:
  FileDescriptor m_queue;
};

class HostileRootTest : public testing::TestWithParam<Generation> {
protected:
  HostileRootTest() {
    writeBackup("root/good", Generation::Five, "5.0", "Good");
    m_tree.makeFolder("outside");
  }

  ~HostileRootTest() override {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss, 2 << 20) << "kilobytes";
  }

  void writeBackup(const std::string& name, Generation generation, const std::string& version,
                   const std::string& device) const {
    samples::SampleBackup backup{.generation = generation,
                                 .deviceName = device,
                                 .productVersion = version,
                                 .encoding = samples::PropertyListEncoding::Binary};
    for (const char* photo : {"IMG_0001.JPG", "IMG_0002.PNG"}) {
      backup.files.push_back({.domain = std::string(samples::photoDomain(generation)),
                              .path = std::string("Media/DCIM/") + photo,
                              .content = device + photo});
    }
    samples::writeBackup(m_tree.path(name), backup);
  }

  void writeBadBackup() const {
    static const std::map<Generation, const char*> versions = {{Generation::TwoSingleForm, "1.1"},
                                                               {Generation::TwoPairForm, "2.0"},
                                                               {Generation::Three, "3.0"},
                                                               {Generation::Four, "4.0"},
                                                               {Generation::Five, "9.3"}};
    writeBackup("root/bad", GetParam(), versions.at(GetParam()), "Bad");
  }

  // Lists the root, looks at each photo of each backup and exports it. The names of the devices.
  std::vector<std::string> use() {
    std::vector<std::string> names;
    std::filesystem::remove_all(m_tree.path("out"));
    m_tree.makeFolder("out");
    const BackupController controller(m_tree.path("root"));
    for (const auto& device : controller.devices()) {
      names.push_back(device->name().value_or("(none)"));
      for (const auto& backup : device->backups()) {
        for (const auto& item : backup->imageItems()) {
          item->imageRepresentation();
          item->extract(m_tree.path("out"));
        }
        backup->visitFiles([](const BackedUpFile&) {});
      }
    }
    return names;
  }

  // Whatever the other backup is, this one is there, whole.
  void expectTheGoodBackup() {
    const auto before = treeState(m_tree.path("root/good"));
    const std::vector<std::string> names = m_tree.list("root");
    const OpenWatch outside(m_tree.path("outside"));
    EXPECT_THAT(use(), Contains("Good"));
    EXPECT_FALSE(outside.anything());
    EXPECT_EQ(m_tree.list("root"), names);
    EXPECT_EQ(treeState(m_tree.path("root/good")), before);
    std::vector<std::string> photos;
    for (const std::string& name : m_tree.list("out")) {
      photos.push_back(m_tree.read("out/" + name));
    }
    EXPECT_THAT(photos, Contains("GoodIMG_0001.JPG"));
    EXPECT_THAT(photos, Contains("GoodIMG_0002.PNG"));
    EXPECT_THAT(photos, IsSubsetOf({"GoodIMG_0001.JPG", "GoodIMG_0002.PNG", "BadIMG_0001.JPG",
                                    "BadIMG_0002.PNG"}));
  }

  TemporaryTree m_tree;
  LogCapture m_capture{[](const std::string&) {}};
};

// The test waits for ever where one of them is waited for, and needs far more memory than there is
// where one of them is read.
TEST_P(HostileRootTest, somethingElseStandsInTheFilesPlaces) {
  namespace fs = std::filesystem;
  const std::string moved = m_tree.path("outside/moved");
  const auto node = [](mode_t type, dev_t device = 0) {
    return [=](const fs::path& path) { return ::mknod(path.c_str(), type | 0600, device) == 0; };
  };
  const std::function<bool(const fs::path&)> obstacles[] = {
      node(S_IFIFO),
      node(S_IFSOCK),
      [&](const fs::path& path) {  // only root may make an endless file
        return node(S_IFCHR, makedev(1, 5))(path) || ::geteuid() != 0;
      },
      [](const fs::path& path) { return fs::create_directory(path); },
      [&](const fs::path& path) { return ::symlink(moved.c_str(), path.c_str()) == 0; },
      [](const fs::path& path) { return ::symlink("/dev/zero", path.c_str()) == 0; },
      [](const fs::path& path) {
        samples::writeFile(path, "");
        return ::truncate(path.c_str(), off_t{64} << 30) == 0;
      },
      [](const fs::path&) { return true; }};
  writeBadBackup();
  for (const std::string& name : m_tree.list("root/bad")) {
    for (std::size_t i = 0; i < std::size(obstacles); ++i) {
      SCOPED_TRACE(name + ", obstacle " + std::to_string(i));
      const std::string path = m_tree.path("root/bad/" + name);
      fs::rename(path, moved);  // outside of the root
      ASSERT_TRUE(obstacles[i](path));
      expectTheGoodBackup();
      fs::remove_all(path);
      fs::rename(moved, path);
    }
  }
}

TEST_P(HostileRootTest, propertyListsAreOfTheWrongShape) {
  using samples::PlistValue;
  writeBadBackup();
  const std::vector<std::string> lists = {
      xmlPropertyList(PlistValue::array({1, 2})),
      xmlPropertyList(PlistValue::dictionary({{"Product Version", 5}, {"Data", 1}})),
      xmlPropertyList(PlistValue::dictionary({{"Product Version", "5"},
                                              {"Device Name", false},
                                              {"Data", PlistValue::data("<plist>")}})),
      "bplist00", "{ \"Product Version\" = 5; }"};
  for (const char* name : {"Info.plist", "Manifest.plist"}) {
    const std::string content = m_tree.read(std::string("root/bad/") + name);
    for (const std::string& list : lists) {
      SCOPED_TRACE(std::string(name) + ": " + list.substr(0, 60));
      m_tree.write(std::string("root/bad/") + name, list);
      expectTheGoodBackup();
    }
    m_tree.write(std::string("root/bad/") + name, content);
  }
}

INSTANTIATE_TEST_SUITE_P(Generations, HostileRootTest,
                         testing::Values(Generation::TwoSingleForm, Generation::TwoPairForm,
                                         Generation::Three, Generation::Four, Generation::Five));

}  // namespace
}  // namespace snaplift
