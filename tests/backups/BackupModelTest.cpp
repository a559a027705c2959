#include <atomic>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <latch>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include "backups/BackupModel.h"
#include "foundation/Log.h"
#include "foundation/NotificationCenter.h"
#include "samples/BackupWriter.h"
#include "support/TemporaryTree.h"

namespace {

std::atomic<bool> noMoreThreads = false;

}  // namespace

// The system's own function, unless a test says that there are no more threads.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*start)(void*), void* argument) noexcept {
  static const auto create =
      reinterpret_cast<decltype(&pthread_create)>(::dlsym(RTLD_NEXT, "pthread_create"));
  return noMoreThreads ? EAGAIN : create(thread, attributes, start, argument);
}

namespace snaplift {
namespace {

using samples::Generation;
using samples::PlistValue;
using testing::ElementsAre;
using testing::SizeIs;

// A thread of which a test can know that it has come to where it waits for another.
class TestThread {
public:
  explicit TestThread(std::function<void()> work) {
    std::promise<pid_t> identity;
    m_thread = std::jthread([&identity, work = std::move(work)] {
      identity.set_value(::gettid());
      work();
    });
    m_identity = identity.get_future().get();
  }

  // The second character behind the name is the state; 'S' is a wait that a signal may end.
  void waitUntilItSleepsOrEnds() const {
    const std::string path = "/proc/self/task/" + std::to_string(m_identity) + "/stat";
    for (std::string line = " "; !line.empty(); std::this_thread::yield()) {
      line.clear();
      std::getline(std::ifstream(path), line);
      const std::size_t name = line.rfind(')');
      if (name != line.npos && line.substr(name, 3) == ") S") {
        return;
      }
    }
  }

  std::jthread take() { return std::move(m_thread); }

private:
  std::jthread m_thread;
  pid_t m_identity = 0;
};

class BackupModelTest : public testing::Test {
protected:
  static samples::SampleBackup sample() {
    samples::SampleBackup backup{.generation = Generation::Five,
                                 .deviceName = "Anna's Phone",
                                 .productVersion = "5.1",
                                 .date = instantFromUnixTime(1318420800)};
    for (const char* name : {"IMG_0002.JPG", "IMG_0001.JPG"}) {
      backup.files.push_back({.domain = "CameraRollDomain",
                              .path = std::string("Media/DCIM/") + name,
                              .content = name});
    }
    return backup;
  }

  std::unique_ptr<BackupModel> modelOf(const samples::SampleBackup& backup) {
    samples::writeBackup(m_tree.path("b"), backup);
    return BackupModel::initWithBackupAtPath(m_tree.path("b"));
  }

  void writeInfo(const PlistValue& info) {
    m_tree.write("b/Info.plist", samples::binaryPropertyList(info));
  }

  std::unique_ptr<BackupModel> model() {
    return BackupModel::initWithBackupAtPath(m_tree.path("b"));
  }

  // Has `work` done in the midst of the next load. That load writes a line to the log when it finds
  // its damaged "Manifest.plist", before it reads the photos.
  void duringLoad(std::function<void()> work) {
    m_tree.write("b/Manifest.plist", "rubbish");
    m_duringLoad = std::move(work);
  }

  void take(std::string line) {
    if (line.starts_with("cannot read")) {
      if (m_duringLoad) {
        std::exchange(m_duringLoad, nullptr)();
      }
      ++m_loads;
    } else {
      m_log.push_back(std::move(line));
    }
  }

  TemporaryTree m_tree;
  std::vector<std::string> m_log;
  std::atomic<int> m_loads = 0;  // of damaged backups
  std::function<void()> m_duringLoad;
  LogCapture m_capture{[this](std::string line) { take(std::move(line)); }};
};

// Counts the notifications of one model and lets a test wait for them.
class LoadWatcher {
public:
  explicit LoadWatcher(BackupModel& model)
      : m_started(NotificationCenter::defaultCenter().addObserver(
            std::string(startedLoadingNotification), &model,
            [this, &model](const Notification&) {
              processingAtStart = model.processing();
              thread = std::this_thread::get_id();
              ++starts;
            })),
        m_finished(NotificationCenter::defaultCenter().addObserver(
            std::string(finishedLoadingNotification), &model, [this, &model](const Notification&) {
              processingAtFinish = model.processing();
              readyAtFinish = model.contentReady();
              ++finishes;
              finishes.notify_all();
            })) {}

  void waitForFinishes(int count) {
    for (int seen = finishes; seen < count; seen = finishes) {
      finishes.wait(seen);
    }
  }

  std::atomic<int> starts = 0;
  std::atomic<int> finishes = 0;
  std::atomic<bool> processingAtStart = true;
  std::atomic<bool> processingAtFinish = true;
  std::atomic<bool> readyAtFinish = false;
  std::atomic<std::thread::id> thread;

private:
  NotificationCenter::Token m_started;
  NotificationCenter::Token m_finished;
};

TEST_F(BackupModelTest, describesItsBackupAndSaysWhenTheDeviceDidNotFinishIt) {
  const auto model = modelOf(sample());
  EXPECT_EQ(model->description(), "Anna's Phone - 2011-10-12 12:00:00 +0000");
  EXPECT_FALSE(model->wasLeftUnfinished());
  for (const auto& [state, unfinished] :
       {std::pair(PlistValue("finished"), false), std::pair(PlistValue("uploading"), true),
        std::pair(PlistValue(7), false)}) {
    m_tree.write("b/Status.plist",
                 samples::binaryPropertyList(PlistValue::dictionary({{"SnapshotState", state}})));
    const auto again = BackupModel::initWithBackupAtPath(m_tree.path("b"));
    m_tree.write("b/Status.plist", "");  // a row that is looked at asks no disk
    EXPECT_EQ(again->wasLeftUnfinished(), unfinished);
  }
}

TEST_F(BackupModelTest, takesTheDecoderOfItsVersionAndOfTheManifestThatIsThere) {
  struct Case {
    const char* version;
    std::vector<const char*> manifests;
    const char* decoder;
    std::size_t linesInLog;
  };
  for (const Case& c :
       {Case{"10.0", {}, "iOS10Decoder", 1}, Case{"9.3", {}, "iOS5Decoder", 1},
        Case{"5.0", {}, "iOS5Decoder", 1}, Case{"4.2.1", {}, "iOS4Decoder", 0},
        Case{"4.0", {}, "iOS4Decoder", 0}, Case{"3.1.3", {}, "iOS3Decoder", 0},
        Case{"3.0", {}, "iOS3Decoder", 0}, Case{"2.2.1", {}, "iOS2Decoder", 0},
        Case{"1", {}, "iOS2Decoder", 0}, Case{"5.0", {"db"}, "iOS10Decoder", 1},
        Case{"14.3", {"db"}, "iOS10Decoder", 1}, Case{"5.0", {"db", "mbdb"}, "iOS5Decoder", 1},
        Case{"14.3", {"db", "mbdb"}, "iOS5Decoder", 1}, Case{"4.3", {"db"}, "iOS4Decoder", 0}}) {
    std::filesystem::remove_all(m_tree.path("b"));
    m_log.clear();
    writeInfo(PlistValue::dictionary({{"Product Version", c.version}, {"Device Name", 7}}));
    for (const char* manifest : c.manifests) {
      m_tree.write(std::string("b/Manifest.") + manifest, "");
    }
    const auto model = this->model();
    ASSERT_TRUE(model) << c.version;
    EXPECT_EQ(model->decoderName(), c.decoder) << c.version;
    EXPECT_FALSE(model->deviceName());
    EXPECT_THAT(m_log, SizeIs(c.linesInLog)) << c.version;
  }
}

TEST_F(BackupModelTest, loadsOnceOnAThreadOfItsOwnAndSaysSoEachTime) {
  const auto model = modelOf(sample());
  LoadWatcher watcher(*model);
  duringLoad([&] {
    EXPECT_TRUE(model->processing());
    EXPECT_FALSE(model->contentReady());
  });
  for (const int times : {1, 2}) {
    model->prepareContent();
    watcher.waitForFinishes(times);
    EXPECT_EQ(watcher.starts, times);
    EXPECT_FALSE(watcher.processingAtStart);
    EXPECT_FALSE(watcher.processingAtFinish);
    EXPECT_TRUE(watcher.readyAtFinish);
    EXPECT_NE(watcher.thread.load(), std::this_thread::get_id());
    EXPECT_EQ(m_loads, 1);
  }
}

// Whoever asks first makes the decoder load, and everybody else gets what that load found.
TEST_F(BackupModelTest, loadsOnceForAllWhoAskAtTheSameTime) {
  const auto model = modelOf(sample());
  LoadWatcher watcher(*model);
  std::vector<const ImageItem*> seen(4);
  std::vector<std::jthread> threads;
  duringLoad([&] {
    for (const ImageItem*& first : seen) {
      TestThread thread([&] { first = model->imageItems().front().get(); });
      thread.waitUntilItSleepsOrEnds();
      threads.push_back(thread.take());
    }
  });
  model->prepareContent();
  watcher.waitForFinishes(1);
  threads.clear();
  EXPECT_EQ(m_loads, 1);
  ASSERT_THAT(model->imageItems(), SizeIs(2));
  EXPECT_THAT(seen, testing::Each(model->imageItems().front().get()));
  EXPECT_EQ(model->imageItems()[0]->fileName(), "IMG_0002.JPG");
  EXPECT_EQ(textOf(*model->imageItems()[1]->imageRepresentation()), "IMG_0001.JPG");
  EXPECT_EQ(textOf(*model->imageItems()[1]->imageBeginning(3)), "IMG");
  EXPECT_EQ(model->imageItems()[1]->info().name(), "IMG_0001.JPG");
  EXPECT_EQ(model->imageItems()[1]->info().size, 12u);
  EXPECT_EQ(model->imageItems()[1]->contentState(), ContentState::Whole);

  const auto another = modelOf(sample());
  duringLoad([] {});
  EXPECT_THAT(another->imagePaths(), SizeIs(2));
  LoadWatcher later(*another);
  another->prepareContent();
  later.waitForFinishes(1);
  EXPECT_EQ(m_loads, 2);
}

TEST_F(BackupModelTest, loadsOnTheCallersThreadWhenTheSystemHasNoMore) {
  const auto model = modelOf(sample());
  LoadWatcher watcher(*model);
  noMoreThreads = true;
  model->prepareContent();
  noMoreThreads = false;
  EXPECT_EQ(watcher.finishes, 1);
  EXPECT_TRUE(model->contentReady());
  EXPECT_EQ(watcher.thread.load(), std::this_thread::get_id());
  EXPECT_THAT(model->imageItems(), SizeIs(2));
  model->prepareContent();
  watcher.waitForFinishes(2);
}

TEST_F(BackupModelTest, neverStartsTwoLoadsAtOnce) {
  const auto model = modelOf(sample());
  LoadWatcher watcher(*model);
  duringLoad([&] { model->prepareContent(); });
  std::latch release(1);
  const auto hold = NotificationCenter::defaultCenter().addObserver(
      std::string(startedLoadingNotification), model.get(),
      [&](const Notification&) { release.wait(); });
  model->prepareContent();
  model->prepareContent();  // before the first thread has begun, or right after
  release.count_down();
  watcher.waitForFinishes(1);
  EXPECT_EQ(watcher.starts, 1);
}

TEST_F(BackupModelTest, mayBeAskedAgainFromTheFinishedHandler) {
  const auto model = modelOf(sample());
  LoadWatcher watcher(*model);
  std::atomic<bool> again = true;
  const auto token = NotificationCenter::defaultCenter().addObserver(
      std::string(finishedLoadingNotification), model.get(), [&](const Notification&) {
        if (again.exchange(false)) {
          std::async(std::launch::async, [&] { model->prepareContent(); }).get();
        }
      });
  model->prepareContent();
  watcher.waitForFinishes(2);
  EXPECT_EQ(watcher.starts, 2);
}

TEST_F(BackupModelTest, saysNothingAnyMoreWhenItGoesWhileItLoads) {
  auto model = modelOf(sample());
  LoadWatcher watcher(*model);
  std::jthread going;
  std::latch asked(1);
  duringLoad([&] {
    asked.wait();  // nobody may still be inside of what goes
    TestThread thread([&] { model.reset(); });
    thread.waitUntilItSleepsOrEnds();  // it waits for this load
    going = thread.take();
  });
  model->prepareContent();
  asked.count_down();
  while (m_loads == 0) {
    std::this_thread::yield();
  }
  going = {};
  EXPECT_FALSE(model);
  EXPECT_EQ(watcher.finishes, 0);
}

TEST_F(BackupModelTest, anEncryptedBackupHasNoImagesToShow) {
  samples::SampleBackup backup = sample();
  backup.encrypted = true;
  const auto model = modelOf(backup);
  EXPECT_FALSE(model->hasImages());  // also as the first question
  EXPECT_THAT(model->imagePaths(), SizeIs(2));
  backup = sample();
  backup.files.clear();
  EXPECT_FALSE(modelOf(backup)->hasImages());
}

}  // namespace
}  // namespace snaplift
