// The window while it exports, ended by whoever may end it, at any moment.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "samples/BackupWriter.h"
#include "support/Program.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;

constexpr int photoCount = 300;
constexpr std::size_t photoSize = 20'000;
constexpr int photosBeforeTheEnd = photoCount / 10;

struct Ending {
  const char* name;
  int signal;        // 0: the display goes away
  bool hasNameless;  // files without a name
  int wantedStatus;
};

class EndedWindowTest : public testing::TestWithParam<Ending> {
protected:
  EndedWindowTest() {
    samples::SampleBackup backup{.generation = samples::Generation::Five, .productVersion = "5.0"};
    for (int i = 0; i < photoCount; ++i) {
      const std::string name = "IMG_" + std::to_string(1000 + i) + ".JPG";
      m_photos[name] = std::string(photoSize - 1, static_cast<char>('!' + i % 90)) + '\n';
      backup.files.push_back({.domain = "CameraRollDomain",
                              .path = "Media/DCIM/100APPLE/" + name,
                              .content = m_photos[name]});
    }
    samples::writeBackup(m_tree.path("root/backup"), backup);
  }

  ProgramCall exporting(const std::string& display) const {
    ProgramCall call{.arguments = {EXPORTINGWINDOW, m_tree.path("root"), m_tree.path("out")},
                     .environment = {{"HOME", m_tree.path("home")},
                                     {"TMPDIR", m_tree.makeFolder("tmp")},
                                     {"DISPLAY", display},
                                     {"DBUS_SESSION_BUS_ADDRESS", "disabled:"},
                                     {"QT_QPA_PLATFORM", display.empty() ? "offscreen" : "xcb"}}};
    if (!GetParam().hasNameless) {
      call.environment.insert(call.environment.end(),
                              {{"LD_PRELOAD", FAULT_PRELOAD},
                               {"ASAN_OPTIONS", "verify_asan_link_order=0"},
                               {"SNAPLIFT_FAULT", "open:1000000000:5"},  // never
                               {"SNAPLIFT_FAULT_MARK", m_tree.path("mark")},
                               {"SNAPLIFT_FAULT_KIND", "1"}});
    }
    return call;
  }

  void emptyDestination() const {
    fs::remove_all(m_tree.path("out"));
    m_tree.makeFolder("out");
  }

  std::size_t privateFolders() const {
    return static_cast<std::size_t>(std::ranges::count_if(
        fs::directory_iterator(m_tree.path("tmp")), [](const fs::directory_entry& entry) {
          return entry.path().filename().string().starts_with("snaplift-");
        }));
  }

  struct Found {
    int photos = 0, parts = 0;
  };

  // What is there: each photo is whole, also under a number.
  Found found() const {
    Found found;
    for (const std::string& name : m_tree.list("out")) {
      if (name.ends_with(".part")) {
        ++found.parts;
      } else {
        const std::string photo = name.substr(0, std::string_view("IMG_1000").size()) + ".JPG";
        EXPECT_TRUE(m_tree.read("out/" + name) == m_photos.at(photo)) << name;
        ++found.photos;
      }
    }
    return found;
  }

  TemporaryTree m_tree;
  std::map<std::string, std::string> m_photos;  // contents by name
};

INSTANTIATE_TEST_SUITE_P(, EndedWindowTest,
                         testing::Values(Ending{"KILL", SIGKILL, true, -SIGKILL},
                                         Ending{"TERM", SIGTERM, true, 130},
                                         Ending{"HUPBesideParts", SIGHUP, false, 130},
                                         Ending{"INT", SIGINT, false, 130},
                                         Ending{"KILLBesideParts", SIGKILL, false, -SIGKILL},
                                         Ending{"display", 0, false, 1}),
                         [](const auto& ending) { return ending.param.name; });

// SNAPLIFT_KILLS sets how often.
TEST_P(EndedWindowTest, leavesWholePhotosAndNothingElse) {
  const char* chosen = std::getenv("SNAPLIFT_KILLS");
  const int times = chosen != nullptr ? std::atoi(chosen) : 3;
  const Ending ending = GetParam();
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  int interrupted = 0;
  for (int i = 0; i < times; ++i) {
    emptyDestination();
    std::optional<Program> display;
    std::string name;
    if (ending.signal == 0) {
      if (std::string_view(XVFB).empty()) {
        GTEST_SKIP() << "needs Xvfb";
      }
      const std::string number = std::to_string(10000 + ::getpid() % 20000);
      name = ":" + number;
      display.emplace(ProgramCall{.arguments = {XVFB, name, "-nolisten", "tcp", "-noreset"}});
      ASSERT_TRUE(waitFor([&] { return fs::exists("/tmp/.X11-unix/X" + number); }));
    }
    Program window(exporting(name));
    const auto enough =
        static_cast<std::size_t>(std::uniform_int_distribution<>(1, photosBeforeTheEnd)(random));
    ASSERT_TRUE(waitFor([&] { return m_tree.list("out").size() >= enough; }));
    if (display) {
      display->signal(SIGTERM);
      display->finish();
    } else {
      window.signal(ending.signal);
    }
    const ProgramResult result = window.finish();
    EXPECT_THAT(result.status, testing::AnyOf(0, ending.wantedStatus)) << result.errors;
    interrupted += result.status == 0 ? 0 : 1;
    const Found after = found();
    if (ending.signal != SIGKILL) {
      EXPECT_EQ(after.parts, 0);
      EXPECT_EQ(privateFolders(), 0U);
    }
    EXPECT_TRUE(result.status != 0 || after.photos == photoCount) << after.photos;
  }
  EXPECT_GT(interrupted, 0);
  // The next start has nothing left of it all.
  const ProgramResult result = Program::run(exporting(""));
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(privateFolders(), 0U);
  EXPECT_EQ(found().parts, 0);
}

}  // namespace
}  // namespace snaplift
