// An export that is ended by a signal at any moment.

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "CommandLineTest.h"
#include "support/TreeState.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using std::chrono::steady_clock;

constexpr int photoCount = 100;
constexpr std::size_t photoSize = 20'000;

class EndedExportTest : public CommandLineTest, public testing::WithParamInterface<int> {
protected:
  EndedExportTest() {
    samples::SampleBackup backup{.generation = samples::Generation::Five, .productVersion = "5.0"};
    for (int i = 0; i < photoCount; ++i) {
      const std::string name = "IMG_" + std::to_string(1000 + i) + ".JPG";
      m_photos[name] = std::string(photoSize - 1, static_cast<char>('!' + i % 90)) + '\n';
      backup.files.push_back(photo(layouts[4], name, m_photos[name]));
    }
    m_backup = write("backup", backup);
    m_before = treeState(m_backup);
  }

  ProgramCall exporting() const {
    return call({"export", "--json", m_backup, "-o", m_tree.path("out")});
  }

  void emptyDestination() const {
    fs::remove_all(m_tree.path("out"));
    m_tree.makeFolder("out");
  }

  // Temporary folders of the program. A sanitizer makes a file for a moment there, too.
  std::vector<std::string> temporaryFolders() const {
    std::vector<std::string> names = m_tree.list("tmp");
    std::erase_if(names, [](const std::string& name) { return !name.starts_with("snaplift-"); });
    return names;
  }

  // How many photos are there, whole all of them, when the export has ended normally or not.
  int wholePhotos(bool wasKilled) const {
    int count = 0;
    for (const std::string& name : m_tree.list("out")) {
      if (name.ends_with(".part")) {
        EXPECT_TRUE(wasKilled) << name;
      } else {
        EXPECT_TRUE(m_tree.read("out/" + name) == m_photos.at(name)) << name;
        ++count;
      }
    }
    return count;
  }

  std::string m_backup;
  std::map<std::string, std::string> m_photos;  // contents by name
  std::map<std::string, EntryState> m_before;
};

INSTANTIATE_TEST_SUITE_P(, EndedExportTest, testing::Values(SIGKILL, SIGTERM),
                         [](const auto& number) {
                           return number.param == SIGKILL ? "KILL" : "TERM";
                         });

// SNAPLIFT_KILLS sets how often.
TEST_P(EndedExportTest, leavesWholePhotosOrNone) {
  const char* chosen = std::getenv("SNAPLIFT_KILLS");
  const int times = chosen != nullptr ? std::atoi(chosen) : 15;
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  emptyDestination();
  const auto begin = steady_clock::now();
  ASSERT_EQ(Program::run(exporting()).status, 0);
  const auto longest = std::chrono::microseconds(
      std::chrono::duration_cast<std::chrono::microseconds>(steady_clock::now() - begin));
  int ended = 0;
  for (int i = 0; i < times; ++i) {
    emptyDestination();
    Program program(exporting());
    std::this_thread::sleep_for(std::chrono::microseconds(
        std::uniform_int_distribution<std::int64_t>(0, longest.count())(random)));
    program.signal(GetParam());
    const ProgramResult result = program.finish();
    // A signal before the first photo finds the program not yet prepared for it.
    EXPECT_THAT(result.status, testing::AnyOf(0, -GetParam(), 130)) << result.errors;
    ended += result.status == 0 ? 0 : 1;
    const int there = wholePhotos(result.status == -SIGKILL);
    if (result.status >= 0) {
      EXPECT_EQ(jsonLines(result).back()["exported"], there);
      EXPECT_THAT(temporaryFolders(), testing::IsEmpty());
    }
    EXPECT_TRUE(result.status != 0 || there == photoCount) << there;
  }
  EXPECT_GT(ended, times / 4);
  emptyDestination();
  EXPECT_EQ(Program::run(exporting()).status, 0);
  EXPECT_EQ(wholePhotos(false), photoCount);
  EXPECT_THAT(temporaryFolders(), testing::IsEmpty());
  EXPECT_EQ(treeState(m_backup), m_before);
}

}  // namespace
}  // namespace snaplift
