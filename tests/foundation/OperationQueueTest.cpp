#include <atomic>
#include <barrier>
#include <latch>
#include <memory>

#include <gtest/gtest.h>

#include "foundation/OperationQueue.h"

namespace snaplift {
namespace {

TEST(OperationQueue, runsEverythingOnceOnItsWorkers) {
  std::atomic<int> runs = 0;
  OperationQueue queue({}, 4);
  for (int i = 0; i < 1000; ++i) {
    queue.addOperation([&] { ++runs; });
  }
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(runs, 1000);
  EXPECT_EQ(queue.operationCount(), 0u);
}

TEST(OperationQueue, hasAsManyWorkersAsItWasGiven) {
  std::barrier allThree(3);  // with fewer workers nobody would pass
  OperationQueue queue({}, 3);
  for (int i = 0; i < 3; ++i) {
    queue.addOperation([&] { allThree.arrive_and_wait(); });
  }
  queue.waitUntilAllOperationsAreFinished();
}

TEST(OperationQueue, countsWhatWaitsAndRunsAndTellsEachChange) {
  std::atomic<int> changes = 0;
  std::latch release(1);
  std::latch begun(1);
  {
    OperationQueue queue([&] { ++changes; }, 1);
    queue.addOperation([&] {
      begun.count_down();
      release.wait();
    });
    queue.addOperation([] {});
    queue.addOperation([] {});
    begun.wait();
    EXPECT_EQ(queue.operationCount(), 3u);
    EXPECT_EQ(changes, 3);
    release.count_down();
    queue.waitUntilAllOperationsAreFinished();
    EXPECT_EQ(queue.operationCount(), 0u);
  }
  EXPECT_EQ(changes, 6);
}

TEST(OperationQueue, dropsWhatHasNotBegun) {
  std::atomic<int> runs = 0;
  auto owned = std::make_shared<int>();
  std::latch release(1);
  std::latch begun(1);
  OperationQueue queue({}, 1);
  queue.addOperation([&] {
    begun.count_down();
    release.wait();
    ++runs;
  });
  begun.wait();
  queue.addOperation([&, owned] { ++runs; });
  queue.cancelAllOperations();
  EXPECT_EQ(owned.use_count(), 1);
  EXPECT_EQ(queue.operationCount(), 1u);
  release.count_down();
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(runs, 1);
}

TEST(OperationQueue, canGoWhileItWorks) {
  std::atomic<int> runs = 0;
  std::latch begun(1);
  {
    OperationQueue queue({}, 2);
    queue.addOperation([&] { begun.count_down(); });
    begun.wait();
    for (int i = 0; i < 1000; ++i) {
      queue.addOperation([&] { ++runs; });
    }
  }
  EXPECT_LE(runs, 1000);
}

}  // namespace
}  // namespace snaplift
