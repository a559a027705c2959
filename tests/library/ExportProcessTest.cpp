#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ExportProcess.h"
#include "faults/Volume.h"
#include "foundation/File.h"
#include "foundation/Path.h"
#include "support/TemporaryTree.h"
#include "support/TreeState.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::Each;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int folders = 4;
constexpr int namesPerFolder = 12;
constexpr int photoCount = folders * namesPerFolder;
constexpr std::size_t photoSize = 100'000;

bool isPart(const std::string& name) {
  return name.starts_with(".snaplift-") && name.ends_with(".part");
}

dev_t deviceOf(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 ? status.st_dev : 0;
}

// A source of photos, the same names in several folders, and processes that export them.
class ExportTest : public testing::Test {
protected:
  ExportTest() {
    for (int folder = 0; folder < folders; ++folder) {
      for (int number = 0; number < namesPerFolder; ++number) {
        const std::string path = "10" + std::to_string(folder) + "/IMG_00" +
                                 std::to_string(10 + number) + (number % 4 == 0 ? ".PNG" : ".JPG");
        std::string content;
        while (content.size() < photoSize) {
          content += path + '\n';
        }
        m_tree.write("source/" + path, content);
        m_photos.emplace(path, std::move(content));
      }
    }
    m_job = {m_tree.path("source"), m_tree.makeFolder("out"), m_tree.makeFolder("tmp"),
             m_tree.path("log"), false};
    m_before = treeState(m_job.source);
  }

  // Reads reports until there are no more, or until there are `most` of them.
  std::vector<ExportProcess::Report> reports(ExportProcess& process, int most = photoCount) const {
    std::vector<ExportProcess::Report> all;
    while (static_cast<int>(all.size()) < most) {
      std::optional<ExportProcess::Report> report = process.next();
      if (!report) {
        break;
      }
      all.push_back(*std::move(report));
    }
    return all;
  }

  // What is called a photo in the destination and is none, one line each: not the whole bytes of
  // a photo with that stem.
  std::vector<std::string> damage(bool claimsMayBeLeft) const {
    std::vector<std::string> lines;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_job.destination)) {
      const std::string name = entry.path().filename().string();
      const std::string content = readFrom(entry.path().string());
      const bool isPhoto = std::ranges::any_of(m_photos, [&](const auto& photo) {
        return photo.second == content && name.starts_with(pathStem(photo.first));
      });
      if (!isPhoto && !isPart(name) && content != "old" && !(claimsMayBeLeft && content.empty())) {
        lines.push_back(name + ": " + std::to_string(content.size()) + " bytes");
      }
    }
    return lines;
  }

  // The photos that were reported as written and are not there.
  std::vector<std::string> lost(const std::vector<ExportProcess::Report>& all) const {
    std::vector<std::string> photos;
    for (const ExportProcess::Report& report : all) {
      if (!report.written.empty() && readFrom(report.written) != m_photos.at(report.photo)) {
        photos.push_back(report.photo);
      }
    }
    return photos;
  }

  static std::string readFrom(const std::string& path) {
    const std::optional<Bytes> content = readFile(path);
    return content ? std::string(textOf(*content)) : "(" + path + " cannot be read)";
  }

  std::vector<std::string> destinationNames() const {
    return m_tree.list(m_job.destination.substr(m_tree.root().size()));
  }

  std::vector<std::string> logLines() const {
    std::istringstream log(m_tree.read("log"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(log, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  void TearDown() override {
    EXPECT_EQ(treeState(m_job.source), m_before);
    if (fs::exists(m_job.temporaryParent)) {
      EXPECT_TRUE(fs::is_empty(m_job.temporaryParent));
    }
  }

  TemporaryTree m_tree;
  std::map<std::string, std::string> m_photos;  // contents by path
  std::map<std::string, EntryState> m_before;
  ExportJob m_job;
};

// The ways in which a photo reaches its name.
enum class Way { Link, Rename, Claim, ExFat, Fat };

class ExportWayTest : public ExportTest, public testing::WithParamInterface<Way> {
protected:
  void SetUp() override {
    m_job.withoutLinks = GetParam() == Way::Claim;
    if (GetParam() == Way::Rename) {
      m_job.temporaryParent = "/dev/shm/" + std::string(lastPathComponent(m_tree.root()));
      if (deviceOf("/dev/shm") == deviceOf(m_job.destination) ||
          !fs::create_directory(m_job.temporaryParent)) {
        GTEST_SKIP() << "needs a second file system";
      }
    }
    if (GetParam() == Way::ExFat || GetParam() == Way::Fat) {
      if (GetParam() == Way::Fat && std::getenv("SNAPLIFT_KILLS") == nullptr) {
        GTEST_SKIP() << "takes half a minute; SNAPLIFT_KILLS is not set";
      }
      const auto mount = GetParam() == Way::Fat ? Volume::fat : Volume::exFat;
      m_volume = mount(m_job.destination, m_tree.path("image"));
      if (!m_volume) {
        GTEST_SKIP() << "needs root, and the programs that Volume names";
      }
    }
  }

  void TearDown() override {
    ExportTest::TearDown();
    if (GetParam() == Way::Rename) {
      fs::remove_all(m_job.temporaryParent);
    }
  }

  // Whether a kill may leave an empty file under a photo's name.
  bool claims() const { return GetParam() >= Way::Claim; }

  void emptyDestination() const {
    for (const std::string& name : destinationNames()) {
      fs::remove(joinPath(m_job.destination, name));
    }
  }

  std::unique_ptr<Volume> m_volume;
};

std::string nameOf(const testing::TestParamInfo<Way>& way) {
  constexpr const char* names[] = {"link", "rename", "claim", "exFat", "fat"};
  return names[static_cast<int>(way.param)];
}

INSTANTIATE_TEST_SUITE_P(, ExportWayTest,
                         testing::Values(Way::Link, Way::Rename, Way::Claim, Way::ExFat, Way::Fat),
                         nameOf);

// SNAPLIFT_KILLS sets how often.
TEST_P(ExportWayTest, leavesWholePhotosOrNoneWhereverItIsKilled) {
  const char* chosen = std::getenv("SNAPLIFT_KILLS");
  const int kills = chosen != nullptr ? std::atoi(chosen) : 25;
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::string taken = joinPath(m_job.destination, "IMG_0010.PNG");
  int killed = 0;
  for (int i = 0; i < kills; ++i) {
    emptyDestination();
    m_tree.write("out/IMG_0010.PNG", "old");
    ExportProcess process(m_job);
    auto reported = reports(process, std::uniform_int_distribution(0, photoCount - 1)(random));
    std::this_thread::sleep_for(
        std::chrono::microseconds(std::uniform_int_distribution(0, 1000)(random)));
    process.kill();
    std::ranges::move(reports(process), std::back_inserter(reported));
    killed += process.wait() == -SIGKILL ? 1 : 0;
    EXPECT_THAT(damage(claims()), IsEmpty());
    EXPECT_THAT(lost(reported), IsEmpty());
    EXPECT_EQ(readFrom(taken), "old");
  }
  EXPECT_GT(killed, kills / 2);
  emptyDestination();
  ExportProcess process(m_job);
  EXPECT_THAT(lost(reports(process)), IsEmpty());
  EXPECT_EQ(process.wait(), 0) << m_tree.read("log");
  EXPECT_THAT(destinationNames(), SizeIs(photoCount));
}

TEST_P(ExportWayTest, arrivesWholeFromFourProcessesAtOnce) {
  constexpr int processCount = 4;
  m_tree.write("out/img_0010.png", "old");  // the same name, where letter case is folded
  std::vector<std::unique_ptr<ExportProcess>> processes;
  for (int i = 0; i < processCount; ++i) {
    processes.push_back(std::make_unique<ExportProcess>(m_job));
  }
  std::set<std::string> written;
  for (const auto& process : processes) {
    const auto reported = reports(*process);
    EXPECT_EQ(process->wait(), 0) << m_tree.read("log");
    EXPECT_THAT(reported, SizeIs(photoCount));
    EXPECT_THAT(lost(reported), IsEmpty());
    for (const ExportProcess::Report& report : reported) {
      EXPECT_TRUE(written.insert(report.written).second) << report.written;
    }
  }
  EXPECT_THAT(destinationNames(), SizeIs(processCount * photoCount + 1));
  EXPECT_EQ(m_tree.read("out/img_0010.png"), "old");
}

TEST_F(ExportTest, needsNoRoomInTheTemporaryFolder) {
  const auto volume = Volume::inMemory(m_job.temporaryParent, photoSize / 2);
  if (!volume) {
    GTEST_SKIP() << "needs root";
  }
  ExportProcess process(m_job);
  EXPECT_THAT(lost(reports(process)), IsEmpty());
  EXPECT_EQ(process.wait(), 0) << m_tree.read("log");
  EXPECT_THAT(destinationNames(), SizeIs(photoCount));
  EXPECT_TRUE(fs::is_empty(m_job.temporaryParent));
}

TEST_F(ExportTest, fillsADestinationWithWholePhotos) {
  const auto volume = Volume::inMemory(m_job.destination, photoSize * photoCount / 3);
  if (!volume) {
    GTEST_SKIP() << "needs root";
  }
  ExportProcess process(m_job);
  const auto reported = reports(process);
  EXPECT_EQ(process.wait(), 3);
  EXPECT_THAT(reported, SizeIs(photoCount));
  EXPECT_THAT(lost(reported), IsEmpty());
  EXPECT_THAT(damage(false), IsEmpty());
  const auto failed = std::ranges::count(reported, "", &ExportProcess::Report::written);
  EXPECT_THAT(destinationNames(), SizeIs(photoCount - failed));
  EXPECT_THAT(destinationNames(), SizeIs(testing::Ge(photoCount / 4)));
  EXPECT_THAT(logLines(), SizeIs(failed));
  EXPECT_THAT(logLines(), Each(testing::HasSubstr("No space left on device")));
}

TEST_F(ExportTest, writesALineForEachPhotoThatCannotBeWritten) {
  auto volume = Volume::inMemory(m_job.destination, photoSize);
  if (volume) {
    ASSERT_TRUE(volume->makeReadOnly());
  } else {
    fs::permissions(m_job.destination, fs::perms::owner_read | fs::perms::owner_exec);
  }
  ExportProcess process(m_job);
  EXPECT_THAT(reports(process),
              Each(testing::Field(&ExportProcess::Report::written, std::string())));
  EXPECT_EQ(process.wait(), 3);
  EXPECT_THAT(destinationNames(), IsEmpty());
  EXPECT_THAT(logLines(), SizeIs(photoCount));
}

}  // namespace
}  // namespace snaplift
