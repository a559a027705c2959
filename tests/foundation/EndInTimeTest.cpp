#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/EndInTime.h"

namespace snaplift {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

TEST(EndInTime, endsAProcessThatTakesTooLong) {
  const auto endWithAThreadThatNobodyCanStop = [] {
    EndInTime end;
    end.set(milliseconds(20), 7);
    std::this_thread::sleep_for(hours(1));
  };
  EXPECT_EXIT(endWithAThreadThatNobodyCanStop(), testing::ExitedWithCode(7), "");
}

TEST(EndInTime, leavesOneAloneThatEndsByItself) {
  const auto endBefore = [] {
    {
      EndInTime end;
      end.set(hours(1), 7);
    }
    ::_exit(3);
  };
  EXPECT_EXIT(endBefore(), testing::ExitedWithCode(3), "");
}

}  // namespace
}  // namespace snaplift
