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

#include "faults/Volume.h"
#include "foundation/File.h"
#include "foundation/Path.h"
#include "support/Program.h"
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

struct Report {
  std::string photo;    // below the source
  std::string written;  // the path of the file; empty after a failure
};

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
    m_before = treeState(m_source);
  }

  // The call of an ExportProbe with two threads.
  ProgramCall exporting(bool withoutLinks = false) const {
    ProgramCall call{.arguments = {EXPORT_PROBE, m_source, m_destination, "2"},
                     .environment = {{"TMPDIR", m_temporaryParent}}};
    if (withoutLinks) {
      call.arguments.emplace_back("without-links");
    }
    return call;
  }

  static std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  static std::vector<Report> reports(const ProgramResult& result) {
    std::vector<Report> all;
    // A line that a kill has cut off counts for nothing.
    for (const std::string& line :
         linesOf(result.output.substr(0, result.output.rfind('\n') + 1))) {
      const std::size_t tab = line.find('\t');
      all.push_back({line.substr(0, tab), line.substr(tab + 1)});
    }
    return all;
  }

  // What is called a photo in the destination and is none, one line each: not the whole bytes of
  // a photo with that stem.
  std::vector<std::string> damage(bool claimsMayBeLeft) const {
    std::vector<std::string> lines;
    for (const fs::directory_entry& entry : fs::directory_iterator(m_destination)) {
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
  std::vector<std::string> lost(const std::vector<Report>& all) const {
    std::vector<std::string> photos;
    for (const Report& report : all) {
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
    return m_tree.list(m_destination.substr(m_tree.root().size()));
  }

  void TearDown() override {
    EXPECT_EQ(treeState(m_source), m_before);
    if (fs::exists(m_temporaryParent)) {
      EXPECT_TRUE(fs::is_empty(m_temporaryParent));
    }
  }

  TemporaryTree m_tree;
  std::map<std::string, std::string> m_photos;  // contents by path
  std::map<std::string, EntryState> m_before;
  const std::string m_source = m_tree.path("source");
  const std::string m_destination = m_tree.makeFolder("out");
  std::string m_temporaryParent = m_tree.makeFolder("tmp");
};

// The ways in which a photo reaches its name.
enum class Way { Link, Rename, Claim, ExFat, Fat };

class ExportWayTest : public ExportTest, public testing::WithParamInterface<Way> {
protected:
  void SetUp() override {
    if (GetParam() == Way::Rename) {
      m_temporaryParent = "/dev/shm/" + std::string(lastPathComponent(m_tree.root()));
      if (deviceOf("/dev/shm") == deviceOf(m_destination) ||
          !fs::create_directory(m_temporaryParent)) {
        GTEST_SKIP() << "needs a second file system";
      }
    }
    if (GetParam() == Way::ExFat || GetParam() == Way::Fat) {
      if (GetParam() == Way::Fat && std::getenv("SNAPLIFT_KILLS") == nullptr) {
        GTEST_SKIP() << "takes half a minute; SNAPLIFT_KILLS is not set";
      }
      const auto mount = GetParam() == Way::Fat ? Volume::fat : Volume::exFat;
      m_volume = mount(m_destination, m_tree.path("image"));
      if (!m_volume) {
        GTEST_SKIP() << "needs root, and the programs that Volume names";
      }
    }
  }

  void TearDown() override {
    ExportTest::TearDown();
    if (GetParam() == Way::Rename) {
      fs::remove_all(m_temporaryParent);
    }
  }

  ProgramCall exporting() const { return ExportTest::exporting(GetParam() == Way::Claim); }

  // Waits until there is so much in the destination.
  void awaitEntries(int count) const {
    const auto entryCount = [this] {
      return std::distance(fs::directory_iterator(m_destination), fs::directory_iterator());
    };
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (entryCount() < count && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::yield();
    }
  }

  // Whether a kill may leave an empty file under a photo's name.
  bool claims() const { return GetParam() >= Way::Claim; }

  void emptyDestination() const {
    for (const std::string& name : destinationNames()) {
      fs::remove(joinPath(m_destination, name));
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
  const std::string taken = joinPath(m_destination, "IMG_0010.PNG");
  int killed = 0;
  for (int i = 0; i < kills; ++i) {
    emptyDestination();
    m_tree.write("out/IMG_0010.PNG", "old");
    Program process(exporting());
    awaitEntries(std::uniform_int_distribution(1, photoCount)(random));
    std::this_thread::sleep_for(
        std::chrono::microseconds(std::uniform_int_distribution(0, 1000)(random)));
    process.signal(SIGKILL);
    const ProgramResult result = process.finish();
    killed += result.status == -SIGKILL ? 1 : 0;
    EXPECT_THAT(damage(claims()), IsEmpty());
    EXPECT_THAT(lost(reports(result)), IsEmpty());
    EXPECT_EQ(readFrom(taken), "old");
  }
  EXPECT_GT(killed, kills / 2);
  emptyDestination();
  const ProgramResult result = Program::run(exporting());
  EXPECT_THAT(lost(reports(result)), IsEmpty());
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_THAT(destinationNames(), SizeIs(photoCount));
}

TEST_P(ExportWayTest, arrivesWholeFromFourProcessesAtOnce) {
  constexpr int processCount = 4;
  m_tree.write("out/img_0010.png", "old");  // the same name, where letter case is folded
  std::vector<std::unique_ptr<Program>> processes;
  for (int i = 0; i < processCount; ++i) {
    processes.push_back(std::make_unique<Program>(exporting()));
  }
  std::set<std::string> written;
  for (const auto& process : processes) {
    const ProgramResult result = process->finish();
    const std::vector<Report> reported = reports(result);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(reported, SizeIs(photoCount));
    EXPECT_THAT(lost(reported), IsEmpty());
    for (const Report& report : reported) {
      EXPECT_TRUE(written.insert(report.written).second) << report.written;
    }
  }
  EXPECT_THAT(destinationNames(), SizeIs(processCount * photoCount + 1));
  EXPECT_EQ(m_tree.read("out/img_0010.png"), "old");
}

TEST_F(ExportTest, needsNoRoomInTheTemporaryFolder) {
  const auto volume = Volume::inMemory(m_temporaryParent, photoSize / 2);
  if (!volume) {
    GTEST_SKIP() << "needs root";
  }
  const ProgramResult result = Program::run(exporting());
  EXPECT_THAT(lost(reports(result)), IsEmpty());
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_THAT(destinationNames(), SizeIs(photoCount));
  EXPECT_TRUE(fs::is_empty(m_temporaryParent));
}

TEST_F(ExportTest, fillsADestinationWithWholePhotos) {
  const auto volume = Volume::inMemory(m_destination, photoSize * photoCount / 3);
  if (!volume) {
    GTEST_SKIP() << "needs root";
  }
  const ProgramResult result = Program::run(exporting());
  const std::vector<Report> reported = reports(result);
  EXPECT_EQ(result.status, 3);
  EXPECT_THAT(reported, SizeIs(photoCount));
  EXPECT_THAT(lost(reported), IsEmpty());
  EXPECT_THAT(damage(false), IsEmpty());
  const auto failed = std::ranges::count(reported, "", &Report::written);
  EXPECT_THAT(destinationNames(), SizeIs(photoCount - failed));
  EXPECT_THAT(destinationNames(), SizeIs(testing::Ge(photoCount / 4)));
  EXPECT_THAT(linesOf(result.errors), SizeIs(failed));
  EXPECT_THAT(linesOf(result.errors), Each(testing::HasSubstr("No space left on device")));
}

TEST_F(ExportTest, writesALineForEachPhotoThatCannotBeWritten) {
  auto volume = Volume::inMemory(m_destination, photoSize);
  if (volume) {
    ASSERT_TRUE(volume->makeReadOnly());
  } else {
    fs::permissions(m_destination, fs::perms::owner_read | fs::perms::owner_exec);
  }
  const ProgramResult result = Program::run(exporting());
  EXPECT_THAT(reports(result), Each(testing::Field(&Report::written, std::string())));
  EXPECT_EQ(result.status, 3);
  EXPECT_THAT(destinationNames(), IsEmpty());
  EXPECT_THAT(linesOf(result.errors), SizeIs(photoCount));
}

}  // namespace
}  // namespace snaplift
