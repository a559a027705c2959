#include <atomic>
#include <barrier>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/NotificationCenter.h"

namespace snaplift {
namespace {

using testing::ElementsAre;

class NotificationCenterTest : public testing::Test {
protected:
  NotificationCenter::Token listen(std::string name, const void* object, std::string word) {
    return center.addObserver(
        std::move(name), object,
        [this, word = std::move(word)](const Notification&) { heard.push_back(word); });
  }

  NotificationCenter center;
  std::vector<std::string> heard;
  int one = 1;
  int two = 2;
};

TEST_F(NotificationCenterTest, deliversByNameAndObjectInOrder) {
  const auto any = listen("changed", nullptr, "any");
  const auto first = listen("changed", &one, "first");
  const auto other = listen("ended", &one, "other");
  center.post("changed", &one);
  EXPECT_THAT(heard, ElementsAre("any", "first"));
  center.post("changed", &two);
  center.post("end", &one);
  EXPECT_THAT(heard, ElementsAre("any", "first", "any"));
}

TEST_F(NotificationCenterTest, aTokenEndsItsSubscriptionOnly) {
  auto token = listen("changed", nullptr, "old");
  const auto kept = listen("changed", nullptr, "kept");
  token = listen("changed", nullptr, "new");
  center.post("changed", &one);
  EXPECT_THAT(heard, ElementsAre("kept", "new"));
  NotificationCenter::Token moved = std::move(token);
  moved.remove();
  moved.remove();
  center.post("changed", &one);
  EXPECT_THAT(heard, ElementsAre("kept", "new", "kept"));
}

TEST_F(NotificationCenterTest, removalWhileAPostRuns) {
  NotificationCenter::Token self;
  NotificationCenter::Token later;
  self = center.addObserver("changed", nullptr, [&](const Notification&) {
    heard.push_back("self");
    self.remove();
    later.remove();
    heard.push_back("still here");
  });
  later = listen("changed", nullptr, "later");
  const auto last = listen("changed", nullptr, "last");
  center.post("changed", &one);
  EXPECT_THAT(heard, ElementsAre("self", "still here", "last"));
}

TEST_F(NotificationCenterTest, aHandlerMayPostAndSubscribe) {
  std::vector<NotificationCenter::Token> added;
  int depth = 0;
  const auto token = center.addObserver("changed", nullptr, [&](const Notification&) {
    if (++depth == 1) {
      added.push_back(listen("changed", nullptr, "added"));
      center.post("changed", &one);
    }
  });
  center.post("changed", &one);
  EXPECT_EQ(depth, 2);
  EXPECT_THAT(heard, ElementsAre("added"));  // by the inner post, subscribed too late for the outer
}

// What the handler held goes with remove(), while a poster's thread may still have its list.
TEST(NotificationCenter, aTokenReleasesItsHandlerAndMayOutliveItsCentre) {
  NotificationCenter::Token token;
  const auto held = std::make_shared<int>(1);
  {
    NotificationCenter center;
    token = center.addObserver("changed", nullptr, [held](const Notification&) {});
    EXPECT_EQ(held.use_count(), 2);
    token.remove();
    EXPECT_EQ(held.use_count(), 1);
    token = center.addObserver("changed", nullptr, [](const Notification&) {});
  }
  token.remove();
}

TEST(NotificationCenter, threadsPostAndUnsubscribeAtOnce) {
  NotificationCenter center;
  std::barrier start(4);
  std::atomic<bool> stop = false;
  std::vector<std::thread> posters;
  for (int i = 0; i < 3; ++i) {
    posters.emplace_back([&] {
      start.arrive_and_wait();
      while (!stop) {
        center.post("changed", &center);
      }
    });
  }
  start.arrive_and_wait();
  for (int round = 0; round < 300; ++round) {  // as long as a call may still run, removal waits
    auto target = std::make_unique<std::atomic<int>>(0);
    auto token = center.addObserver("changed", &center, [&](const Notification&) { ++*target; });
    while (*target == 0) {
      std::this_thread::yield();
    }
    token.remove();
    target.reset();  // a call after this would be a use after free
  }
  stop = true;
  for (auto& poster : posters) {
    poster.join();
  }
}

}  // namespace
}  // namespace snaplift
