#include <QCoreApplication>
#include <QTest>
#include <QThread>
#include <atomic>
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "widgets/desktop/MainThread.h"

namespace snaplift {
namespace {

TEST(MainThread, runsTheWorkThereAndWaitsForIt) {
  QThread* ranOn = nullptr;
  std::atomic<bool> done = false;
  std::thread worker([&] {
    EXPECT_TRUE(mainThread::runAndWait([&] { ranOn = QThread::currentThread(); }));
    EXPECT_EQ(ranOn, QCoreApplication::instance()->thread());
    done = true;
  });
  EXPECT_TRUE(QTest::qWaitFor([&] { return done.load(); }));
  worker.join();
}

TEST(MainThread, onTheMainThreadOnlyWaitingRunsAtOnce) {
  int calls = 0;
  EXPECT_TRUE(mainThread::runAndWait([&] { ++calls; }));
  EXPECT_EQ(calls, 1);
  mainThread::run([&] { ++calls; });
  EXPECT_EQ(calls, 1);
  EXPECT_TRUE(QTest::qWaitFor([&] { return calls == 2; }));
}

TEST(MainThread, quittingEndsAWaitAndDropsItsWork) {
  bool ran = false;
  std::promise<void> asked;
  std::thread worker([&] {
    asked.set_value();
    EXPECT_FALSE(mainThread::runAndWait([&] { ran = true; }));
  });
  asked.get_future().wait();
  mainThread::beginQuitting();
  worker.join();  // without the event loop: only giving up can end it
  mainThread::resume();
  QCoreApplication::processEvents();
  EXPECT_FALSE(ran);
}

}  // namespace
}  // namespace snaplift
