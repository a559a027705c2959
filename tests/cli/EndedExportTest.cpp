// Exports onto file systems of every kind, ended by a signal at any moment, several at once, and
// onto a disk that is full.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "CommandLineTest.h"
#include "faults/SystemCalls.h"
#include "faults/Volume.h"
#include "foundation/files/File.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"
#include "support/TreeState.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int folders = 4;
constexpr int namesPerFolder = 12;
constexpr int photoCount = folders * namesPerFolder;
constexpr std::size_t photoSize = 50'000;
constexpr std::uint32_t october = 1318420800, november = october + 31 * 86400;  // 2011

// A backup of photos, the same names in several folders, and processes that export them.
class EndedExportTest : public CommandLineTest {
protected:
  EndedExportTest() {
    samples::SampleBackup backup{.generation = samples::Generation::Five, .productVersion = "5.0"};
    for (int i = 0; i < photoCount; ++i) {
      const int number = 10 + i % namesPerFolder;
      const std::string path = "10" + std::to_string(i / namesPerFolder) + "/IMG_00" +
                               std::to_string(number) + (number % 4 == 0 ? ".PNG" : ".JPG");
      std::string content;
      while (content.size() < photoSize) {
        content += path + '\n';
      }
      backup.files.push_back(
          photo(layouts[4], path, content, i < photoCount / 2 ? october : november));
      m_photos.emplace(path, std::move(content));
    }
    m_backup = write("backup", backup);
    m_before = treeState(m_backup);
  }

  void TearDown() override { EXPECT_EQ(treeState(m_backup), m_before); }

  // The call of an export by two threads.
  ProgramCall exporting() const {
    return call({"export", "--json", "-j", "2", m_backup, "-o", m_destination});
  }

  // What was reported of the photos; a line that a kill has cut off counts for nothing.
  static std::vector<Json> reports(const ProgramResult& result) {
    std::vector<Json> all = jsonLines(result);
    std::erase_if(
        all, [](const Json& line) { return !line.is_object() || line["message_type"] != "photo"; });
    return all;
  }

  static std::string readFrom(const std::string& path) {
    const std::optional<Bytes> content = readFile(path);
    return content ? std::string(textOf(*content)) : "(" + path + " cannot be read)";
  }

  // What is in the destination and its folders, but for these.
  std::vector<std::string> files() const {
    std::vector<std::string> names = m_tree.list("out");
    std::erase_if(names, [&](const std::string& name) {
      return fs::is_directory(joinPath(m_destination, name));
    });
    return names;
  }

  static bool isPart(const std::string& path) { return isPartName(lastPathComponent(path)); }

  // What is called a photo in the destination and is none: not the whole bytes of a photo with that
  // stem.
  std::vector<std::string> damage(bool claimsMayBeLeft) const {
    std::vector<std::string> names = files();
    std::erase_if(names, [&](const std::string& name) {
      const std::string content = readFrom(joinPath(m_destination, name));
      return isPart(name) || content == "old" || (claimsMayBeLeft && content.empty()) ||
             std::ranges::any_of(m_photos, [&](const auto& photo) {
               return photo.second == content &&
                      lastPathComponent(name).starts_with(pathStem(photo.first));
             });
    });
    return names;
  }

  // The photos that were reported as written and are not there.
  std::vector<Json> lost(std::vector<Json> all) const {
    std::erase_if(all, [&](const Json& report) {
      const std::string path = report["uniquePath"];
      return report["written"].is_null() ||
             readFrom(report["written"]) == m_photos.at(path.substr(m_backup.size() + 1));
    });
    return all;
  }

  // Temporary folders of the program. A sanitizer makes a file for a moment there, too.
  std::vector<std::string> temporaryFolders() const {
    std::vector<std::string> names = m_tree.list("tmp");
    std::erase_if(names, [](const std::string& name) { return !name.starts_with("snaplift-"); });
    return names;
  }

  std::string m_backup;
  const std::string m_destination = m_tree.makeFolder("out");
  std::map<std::string, std::string> m_photos;  // contents by path
  std::map<std::string, EntryState> m_before;
};

// What an export is made onto: a kind of file system that is played, or a real one.
struct Way {
  const char* name;
  FileSystemKind kind = FileSystemKind::Whole;
  Volume::Maker mount = nullptr;
  bool leavesNothing = false;  // files have no name until they are whole
  bool leavesClaims = false;   // a kill may leave an empty file
  bool takesLong = false;
  bool hasFolders = false;  // by month, and a report is written
};

class ExportWayTest : public EndedExportTest, public testing::WithParamInterface<Way> {
protected:
  void SetUp() override {
    if (GetParam().takesLong && std::getenv("SNAPLIFT_KILLS") == nullptr) {
      GTEST_SKIP() << "takes half a minute; SNAPLIFT_KILLS is not set";
    }
    if (GetParam().mount) {
      m_volume = GetParam().mount(m_destination, m_tree.path("image"), Volume::leastSize);
      if (!m_volume) {
        GTEST_SKIP() << "needs root, and the programs that Volume names";
      }
    }
  }

  ProgramCall exporting(const std::string& report = {}) const {
    ProgramCall call = EndedExportTest::exporting();
    if (GetParam().hasFolders) {
      call.arguments.insert(call.arguments.end(),
                            {"--layout", "month", "--report", m_tree.path("report.csv" + report)});
    }
    if (GetParam().kind != FileSystemKind::Whole) {
      call.environment.insert(
          call.environment.end(),
          {{"LD_PRELOAD", FAULT_PRELOAD},
           {"ASAN_OPTIONS", "verify_asan_link_order=0"},
           {"SNAPLIFT_FAULT", "open:0:0"},
           {"SNAPLIFT_FAULT_MARK", m_tree.path("mark")},
           {"SNAPLIFT_FAULT_KIND", std::to_string(static_cast<int>(GetParam().kind))}});
    }
    return call;
  }

  // Waits until there is so much in the destination and its folders.
  void awaitEntries(int count) const {
    waitFor([&] {
      std::ptrdiff_t entries = 0;
      for (const char* folder : {"", "2011-10", "2011-11"}) {
        std::error_code isMissing;
        entries +=
            std::distance(fs::directory_iterator(fs::path(m_destination) / folder, isMissing), {});
      }
      return entries >= count;
    });
  }

  void emptyDestination() const {
    for (const auto& entry : fs::directory_iterator(m_destination)) {
      fs::remove_all(entry);
    }
    fs::remove(m_tree.path("report.csv"));
  }

  // A report is there as a whole, or not at all: a heading, and a line a photo.
  void expectWholeReport(bool mayBeMissing) const {
    const bool isThere = fs::exists(m_tree.path("report.csv"));
    EXPECT_TRUE(isThere == GetParam().hasFolders || mayBeMissing);
    if (isThere) {
      const std::string report = m_tree.read("report.csv");
      EXPECT_EQ(std::ranges::count(report, '\n'), photoCount + 1);
    }
  }

  // One that stands where a photo of that name belongs.
  const std::string m_taken = GetParam().hasFolders ? "2011-10/IMG_0012.PNG" : "IMG_0012.PNG";
  std::unique_ptr<Volume> m_volume;
};

INSTANTIATE_TEST_SUITE_P(
    , ExportWayTest,
    testing::Values(
        Way{.name = "link", .leavesNothing = true},
        Way{.name = "rename", .kind = FileSystemKind::WithoutNameless},
        Way{.name = "partLink", .kind = FileSystemKind::WithoutRename},
        Way{.name = "claim", .kind = FileSystemKind::WithoutLinks, .leavesClaims = true},
        Way{.name = "exFat", .mount = Volume::exFat, .leavesClaims = true},
        Way{.name = "fat", .mount = Volume::fat, .leavesClaims = true, .takesLong = true},
        Way{.name = "btrfs", .mount = Volume::btrfs, .leavesNothing = true, .takesLong = true},
        Way{.name = "xfs", .mount = Volume::xfs, .leavesNothing = true, .takesLong = true},
        Way{.name = "month", .leavesNothing = true, .hasFolders = true}),
    [](const testing::TestParamInfo<Way>& way) { return way.param.name; });

// By SIGKILL and SIGTERM in turn. SNAPLIFT_KILLS sets how often.
TEST_P(ExportWayTest, leavesWholePhotosOrNoneWhereverItIsEnded) {
  const char* chosen = std::getenv("SNAPLIFT_KILLS");
  const int times = chosen != nullptr ? std::atoi(chosen) : 30;
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  int ended = 0;
  for (int i = 0; i < times; ++i) {
    emptyDestination();
    m_tree.write("out/" + m_taken, "old");
    const int number = i % 2 == 0 ? SIGKILL : SIGTERM;
    Program program(exporting());
    awaitEntries(std::uniform_int_distribution(0, photoCount)(random));
    std::this_thread::sleep_for(
        std::chrono::microseconds(std::uniform_int_distribution(0, 1000)(random)));
    program.signal(number);
    const ProgramResult result = program.finish();
    // A signal before the first photo finds the program not yet prepared for it.
    EXPECT_THAT(result.status, AnyOf(0, -number, 130)) << result.errors;
    ended += result.status == 0 ? 0 : 1;
    const std::vector<Json> reported = reports(result);
    const std::vector<std::string> names = files();
    EXPECT_THAT(damage(GetParam().leavesClaims && result.status < 0), IsEmpty());
    EXPECT_THAT(lost(reported), IsEmpty());
    EXPECT_EQ(m_tree.read("out/" + m_taken), "old");
    expectWholeReport(result.status < 0);
    if (GetParam().leavesNothing || result.status >= 0) {
      EXPECT_EQ(std::ranges::count_if(names, isPart), 0);
    }
    if (result.status >= 0) {
      EXPECT_THAT(names, SizeIs(reported.size() + 1));
      EXPECT_EQ(jsonLines(result).back()["exported"], reported.size());
      EXPECT_TRUE(result.status != 0 || reported.size() == photoCount) << reported.size();
      EXPECT_THAT(temporaryFolders(), IsEmpty());
    }
  }
  EXPECT_GT(ended, times / 3);
  emptyDestination();
  const ProgramResult result = Program::run(exporting());
  EXPECT_THAT(lost(reports(result)), IsEmpty());
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_THAT(files(), SizeIs(photoCount));
  expectWholeReport(false);
  EXPECT_THAT(temporaryFolders(), IsEmpty());
}

TEST_P(ExportWayTest, arrivesWholeFromFourProcessesAtOnce) {
  constexpr int processCount = 4;
  const std::string taken =
      joinPath(parentPath("out/" + m_taken), "img_0012.png");  // where letter case is folded
  m_tree.write(taken, "old");
  std::vector<std::unique_ptr<Program>> processes;
  for (int i = 0; i < processCount; ++i) {
    processes.push_back(std::make_unique<Program>(exporting(std::to_string(i))));
  }
  std::set<std::string> written;
  for (const auto& process : processes) {
    const ProgramResult result = process->finish();
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(reports(result), SizeIs(photoCount));
    EXPECT_THAT(lost(reports(result)), IsEmpty());
    for (const Json& report : reports(result)) {
      EXPECT_TRUE(written.insert(report["written"]).second) << report;
    }
  }
  EXPECT_THAT(files(), SizeIs(processCount * photoCount + 1));
  EXPECT_EQ(m_tree.read(taken), "old");
}

// A full disk: nobody who was at work fails more than once, and nobody begins any more.
TEST_F(EndedExportTest, fillsADestinationWithWholePhotos) {
  const auto volume = Volume::inMemory(m_destination, photoSize * photoCount / 3);
  if (!volume) {
    GTEST_SKIP() << "needs root";
  }
  const ProgramResult result = Program::run(exporting());
  std::vector<Json> failed = reports(result);
  EXPECT_EQ(result.status, 3);
  EXPECT_THAT(lost(failed), IsEmpty());
  EXPECT_THAT(damage(false), IsEmpty());
  const std::size_t arrived =
      std::erase_if(failed, [](const Json& report) { return report["error"].is_null(); });
  EXPECT_THAT(failed, SizeIs(testing::AllOf(testing::Ge(1U), testing::Le(2U))));
  for (const Json& report : failed) {
    EXPECT_THAT(std::string(report["error"]), testing::HasSubstr("No space left on device"));
  }
  EXPECT_THAT(m_tree.list("out"), SizeIs(arrived));
  EXPECT_GE(arrived, photoCount / 4U);
}

}  // namespace
}  // namespace snaplift
