#include <atomic>
#include <future>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/Log.h"
#include "foundation/NotificationCenter.h"
#include "library/BackupModel.h"
#include "samples/BackupWriter.h"
#include "support/TemporaryTree.h"

namespace snaplift {
namespace {

using samples::Generation;
using samples::PlistValue;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

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

  TemporaryTree m_tree;
  std::vector<std::string> m_log;
  LogCapture m_capture{[this](std::string line) { m_log.push_back(std::move(line)); }};
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

TEST_F(BackupModelTest, describesItsBackup) {
  const auto model = modelOf(sample());
  ASSERT_TRUE(model);
  EXPECT_EQ(model->path(), m_tree.path("b"));
  EXPECT_EQ(model->deviceName(), "Anna's Phone");
  EXPECT_EQ(model->date(), instantFromUnixTime(1318420800));
  EXPECT_EQ(model->name(), longDateText(model->date()));
  EXPECT_EQ(model->description(), "Anna's Phone - 2011-10-12 12:00:00 +0000");
  EXPECT_EQ(model->icon(), "Source-List-Icon.png");
  EXPECT_THAT(m_log,
              ElementsAre("processing " + m_tree.path("b") + " for Anna's Phone at version 5.1"));
}

TEST_F(BackupModelTest, takesTheDecoderOfItsVersion) {
  struct Case {
    const char *version, *decoder;
  };
  for (const Case& c :
       {Case{"5.1", "iOS5Decoder"}, Case{"10.0", "iOS5Decoder"}, Case{"4.2.1", "iOS4Decoder"},
        Case{"3.1.3", "iOS3Decoder"}, Case{"2.2.1", "iOS2Decoder"}, Case{"1", "iOS2Decoder"}}) {
    writeInfo(PlistValue::dictionary({{"Product Version", c.version}, {"Device Name", 7}}));
    const auto model = this->model();
    ASSERT_TRUE(model) << c.version;
    EXPECT_EQ(model->decoderName(), c.decoder) << c.version;
    EXPECT_FALSE(model->deviceName());
  }
}

TEST_F(BackupModelTest, saysInTheLogWhyAFolderIsNoBackup) {
  const std::string folder = m_tree.makeFolder("b");
  const std::string noInfo =
      "path: " + folder + " has no info.plist and is therefore not a valid backup";
  EXPECT_FALSE(model());
  m_tree.write("b/Info.plist", "rubbish");
  EXPECT_FALSE(model());
  writeInfo(PlistValue::array({"5.0"}));
  EXPECT_FALSE(model());
  EXPECT_THAT(m_log, ElementsAre(noInfo, noInfo, noInfo));
  m_log.clear();

  writeInfo(PlistValue::dictionary({{"Product Version", "0.9"}}));
  EXPECT_FALSE(model());
  writeInfo(PlistValue::dictionary({{"Device Name", "Phone"}}));
  EXPECT_FALSE(model());
  writeInfo(PlistValue::dictionary({{"Product Version", 5}}));
  EXPECT_FALSE(model());
  const std::string none = "no decoder available for version ";
  EXPECT_THAT(m_log, ElementsAre(none + "0.9 backup " + folder, none + "(null) backup " + folder,
                                 none + "(null) backup " + folder));
}

TEST_F(BackupModelTest, loadsOnceOnAThreadOfItsOwnAndSaysSoEachTime) {
  const auto model = modelOf(sample());
  LoadWatcher watcher(*model);
  model->prepareContent();
  watcher.waitForFinishes(1);
  EXPECT_EQ(watcher.starts, 1);
  EXPECT_FALSE(watcher.processingAtStart);
  EXPECT_FALSE(watcher.processingAtFinish);
  EXPECT_TRUE(watcher.readyAtFinish);
  EXPECT_NE(watcher.thread.load(), std::this_thread::get_id());
  m_tree.write("b/Manifest.mbdb", "");
  model->prepareContent();
  watcher.waitForFinishes(2);
  EXPECT_EQ(watcher.starts, 2);
  EXPECT_THAT(model->imageItems(), SizeIs(2));
}

TEST_F(BackupModelTest, neverStartsTwoLoadsAtOnce) {
  const auto model = modelOf(sample());
  LoadWatcher watcher(*model);
  std::latch release(1);
  std::latch begun(1);
  {
    const auto hold = NotificationCenter::defaultCenter().addObserver(
        std::string(startedLoadingNotification), model.get(), [&](const Notification&) {
          begun.count_down();
          release.wait();
        });
    model->prepareContent();
    model->prepareContent();  // before the first thread has begun, or right after
    begun.wait();
    model->prepareContent();
    release.count_down();
    watcher.waitForFinishes(1);
  }
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

TEST_F(BackupModelTest, canGoWhileItLoads) {
  auto model = modelOf(sample());
  std::atomic<int> finishes = 0;
  std::latch begun(1);
  std::latch going(1);
  const auto started = NotificationCenter::defaultCenter().addObserver(
      std::string(startedLoadingNotification), model.get(), [&](const Notification&) {
        begun.count_down();
        going.wait();
      });
  const auto finished = NotificationCenter::defaultCenter().addObserver(
      std::string(finishedLoadingNotification), model.get(),
      [&](const Notification&) { ++finishes; });
  model->prepareContent();
  begun.wait();
  std::jthread release([&] { going.count_down(); });
  model.reset();
  EXPECT_LE(finishes, 1);
}

TEST_F(BackupModelTest, buildsItsItemsOnceForAllThreads) {
  const auto model = modelOf(sample());
  std::vector<const ImageItem*> seen(8);
  {
    std::vector<std::jthread> threads;
    for (const ImageItem*& first : seen) {
      threads.emplace_back([&] { first = model->imageItems().front().get(); });
    }
  }
  EXPECT_THAT(seen, testing::Each(model->imageItems().front().get()));
  ASSERT_THAT(model->imageItems(), SizeIs(2));
  EXPECT_EQ(model->imageItems()[0]->fileName(), "IMG_0002.JPG");
  EXPECT_EQ(textOf(*model->imageItems()[1]->imageRepresentation()), "IMG_0001.JPG");
}

TEST_F(BackupModelTest, anEncryptedBackupHasNoImagesToShow) {
  samples::SampleBackup encrypted = sample();
  encrypted.encrypted = true;
  const auto model = modelOf(encrypted);
  EXPECT_THAT(model->imagePaths(), SizeIs(2));
  EXPECT_TRUE(model->encrypted());
  EXPECT_FALSE(model->hasImages());

  samples::SampleBackup without = sample();
  without.files.clear();
  const auto empty = modelOf(without);
  EXPECT_FALSE(empty->hasImages());
  EXPECT_THAT(empty->imageItems(), IsEmpty());
}

TEST_F(BackupModelTest, servesBytesWhileAnotherLoads) {
  const auto model = modelOf(sample());
  samples::writeBackup(m_tree.path("c"), sample());
  const auto other = BackupModel::initWithBackupAtPath(m_tree.path("c"));
  const std::string path = model->imagePaths().front();
  LoadWatcher watcher(*other);
  std::atomic<int> right = 0;
  {
    std::vector<std::jthread> threads;
    for (int t = 0; t < 8; ++t) {
      threads.emplace_back([&] {
        for (int i = 0; i < 50; ++i) {
          const auto bytes = model->imageDataForPath(path);
          right += bytes && textOf(*bytes) == "IMG_0002.JPG";
        }
      });
    }
    other->prepareContent();
  }
  watcher.waitForFinishes(1);
  EXPECT_EQ(right, 400);
}

}  // namespace
}  // namespace snaplift
