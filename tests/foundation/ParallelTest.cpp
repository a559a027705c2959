#include <atomic>
#include <barrier>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Parallel.h"

namespace snaplift {
namespace {

TEST(Parallel, callsEachIndexOnce) {
  for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{1001}}) {
    for (const unsigned threads : {0u, 1u, 3u, 64u}) {
      std::vector<std::atomic<int>> calls(count);
      parallelFor(count, threads, [&](std::size_t i) { ++calls[i]; });
      for (const std::atomic<int>& call : calls) {
        EXPECT_EQ(call, 1);
      }
    }
    std::vector<std::atomic<int>> calls(count);
    parallelForFiles(count, [&](std::size_t i) { ++calls[i]; });
    for (const std::atomic<int>& call : calls) {
      EXPECT_EQ(call, 1);
    }
  }
}

TEST(Parallel, runsOnTheThreadsThatItIsGiven) {
  // Each thread's first call waits for the other two: with fewer threads this would never end.
  std::barrier allThree(3);
  std::atomic<int> arrived = 0;
  parallelFor(1000, 3, [&](std::size_t) {
    thread_local bool first = true;
    if (std::exchange(first, false)) {
      ++arrived;
      allThree.arrive_and_wait();
    }
  });
  EXPECT_EQ(arrived, 3);
}

TEST(Parallel, beginsNothingAfterAStop) {
  std::stop_source stop;
  std::atomic<std::size_t> calls = 0;
  parallelFor(
      100000, 2,
      [&](std::size_t) {
        if (++calls == 10) {
          stop.request_stop();
        }
      },
      stop.get_token());
  EXPECT_LT(calls, 100u);
}

}  // namespace
}  // namespace snaplift
