#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/Log.h"

namespace snaplift {
namespace {

TEST(Log, noNameForgesALine) {
  std::vector<std::string> lines;
  const LogCapture capture([&](std::string line) { lines.push_back(std::move(line)); });
  systemLog(std::string_view("a\nfailed\r\t\x1b[31m\0\x7f\\ \xc3\xa4", 21));
  EXPECT_THAT(lines, testing::ElementsAre("a\\nfailed\\r\\t\\x1b[31m\\x00\\x7f\\\\ \xc3\xa4"));
}

TEST(Log, capturesNest) {
  std::vector<std::string> outer;
  std::vector<std::string> inner;
  const LogCapture outerCapture([&](std::string line) { outer.push_back(std::move(line)); });
  {
    const LogCapture innerCapture([&](std::string line) { inner.push_back(std::move(line)); });
    systemLog("one");
  }
  systemLog("two");
  EXPECT_THAT(inner, testing::ElementsAre("one"));
  EXPECT_THAT(outer, testing::ElementsAre("two"));
}

}  // namespace
}  // namespace snaplift
