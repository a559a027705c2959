// Folders on disks that do not answer, or that another user keeps to himself.

#include <atomic>
#include <filesystem>
#include <thread>

#include <sys/fsuid.h>

#include "SLAppDelegateFixture.h"
#include "app/FolderSearch.h"
#include "app/disks/DiskWatch.h"
#include "faults/SystemCalls.h"
#include "widgets/desktop/NoticeBar.h"

namespace snaplift {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

// Holds every thread but the painting one at its next call of the system, until it is released.
std::atomic<bool> isHeld = false;
std::atomic<int> callsOfPainter = 0;
const std::thread::id painter = std::this_thread::get_id();

CallFault hold(SystemCall call) {
  if (std::this_thread::get_id() == painter) {
    callsOfPainter += call == SystemCall::Write ? 0 : 1;  // by which Qt wakes itself
  } else {
    isHeld.wait(true);
  }
  return {};
}

// Lets every other thread look at the disk as nobody, who owns no file.
CallFault beNobody(SystemCall) {
  if (std::this_thread::get_id() != painter) {
    ::setfsuid(65534);
  }
  return {};
}

class TroubledDiskTest : public SLAppDelegateTest {
protected:
  ~TroubledDiskTest() override {
    release();
    m_delegate.reset();
    setFaultPolicy(nullptr);
  }

  static void stop() {
    isHeld = true;
    setFaultPolicy(hold);
  }
  static void release() {
    isHeld = false;
    isHeld.notify_all();
  }
};

TEST_F(TroubledDiskTest, isSearchedWithoutAQuestionOfThePaintingThread) {
  const std::string a = addBackup("a", 3, 100);
  const std::string b = addBackup("b", 5, 50, false, "disk/");
  launch({a});  // the bar of the search loads its fonts
  ASSERT_TRUE(waitForText("3 Photos"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !child<QWidget>("searchBar").isVisible(); }));
  stop();
  callsOfPainter = 0;
  m_delegate->openFolder(b + "/Info.plist");
  EXPECT_EQ(callsOfPainter, 0);
  EXPECT_TRUE(child<QWidget>("searchBar").isVisible());
  child<QPushButton>("stopSearch").click();
  EXPECT_FALSE(child<QWidget>("searchBar").isVisible());
  m_delegate->openFolder(b);
  release();
  EXPECT_TRUE(waitForText("5 Photos"));
}

TEST_F(TroubledDiskTest, isSaidToBeSilentWhileItIs) {
  const std::string backup = addBackup("a", 3, 100);
  std::string silent;
  std::optional<FolderSearch::Outcome> outcome;
  const FolderSearch::Events events = {
      .found = [](const auto&, auto) {},
      .looking = [&](const std::string& place, bool isSilent) { silent = isSilent ? place : ""; },
      .ended = [&](const auto&, const FolderSearch::Outcome& ended) { outcome = ended; }};
  for (const milliseconds patience : {milliseconds(300), milliseconds(hours(1))}) {
    FolderSearch search(events, patience);
    outcome.reset();
    silent.clear();
    stop();
    search.search({backup, true});
    const bool isPatient = patience >= hours(1);
    EXPECT_EQ(QTest::qWaitFor([&] { return silent == backup; }, isPatient ? 600 : 60000),
              !isPatient);
    release();
    ASSERT_TRUE(QTest::qWaitFor([&] { return outcome.has_value(); }));
    EXPECT_EQ(outcome->result.backups, 1U);
    EXPECT_FALSE(outcome->wasStopped);
    EXPECT_FALSE(outcome->problem);
  }
}

// A photo whose bytes do not come.
class SilentSource : public ImageDataSource {
public:
  std::optional<Bytes> imageDataForPath(const std::string&, Bytes) const override {
    isHeld.wait(true);
    return {};
  }
};

TEST_F(TroubledDiskTest, isNoticedByWhoWaitsForAPhoto) {
  const std::string backup = "backup";
  const SilentSource source;
  ImageItem item("backup/a.jpg", source);
  DiskWatch watch(nullptr, milliseconds(200));
  std::vector<std::string> told;
  QObject::connect(&watch, &DiskWatch::isSilent,
                   [&](const auto& silent) { told.push_back(silent); });
  isHeld = true;
  const BackupPhoto photo(item, backup, &watch);
  std::jthread worker([&] { static_cast<void>(photo.imageRepresentation()); });
  EXPECT_TRUE(QTest::qWaitFor([&] { return told == std::vector{backup}; }));
  release();
  EXPECT_TRUE(QTest::qWaitFor([&] { return told == std::vector{backup, std::string()}; }));
}

TEST_F(TroubledDiskTest, isToldOfByItsFolderUntilItAnswers) {
  const std::string a = addBackup("a", 3, 100, false, "disk/");
  launch({m_tree.path("disk")});
  ASSERT_TRUE(waitForText("3 Photos"));
  auto& notice = child<NoticeBar>("diskNotice");
  auto& watch = *m_delegate->findChild<DiskWatch*>();
  emit watch.isSilent(a);
  EXPECT_TRUE(notice.isVisible());
  EXPECT_TRUE(notice.accessibleName().startsWith("“disk” does not answer."));
  emit watch.isSilent({});
  EXPECT_FALSE(notice.isVisible());
}

TEST_F(TroubledDiskTest, isSaidToKeepFoldersToItself) {
  std::filesystem::permissions(m_tree.root(), std::filesystem::perms(0755));
  addBackup("a", 3, 100, false, "disk/");
  std::filesystem::permissions(m_tree.makeFolder("disk/closed"), std::filesystem::perms::none);
  std::filesystem::permissions(m_tree.makeFolder("disk/private"),
                               std::filesystem::perms::owner_all);
  setFaultPolicy(beNobody);
  launch({m_tree.path("disk")});
  auto& notice = child<NoticeBar>("searchNotice");
  ASSERT_TRUE(QTest::qWaitFor([&] { return notice.isVisible(); }));
  EXPECT_EQ(notice.accessibleName(),
            "Backups may be missing: there is no permission to read 2 of the folders in “disk”.");
  EXPECT_TRUE(waitForText("3 Photos"));
  EXPECT_FALSE(m_delegate->window()->findChild<QMessageBox*>());
}

}  // namespace
}  // namespace snaplift
