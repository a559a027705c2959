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

TEST(Log, escapesTheLatterControlCharactersAndKeepsAllOtherText) {
  EXPECT_EQ(escapedForLog("a\xc2\x9b"
                          "31m\xc2\x80\xc2\xa0"),
            "a\\x9b31m\\x80\xc2\xa0");
  EXPECT_EQ(escapedForLog("\x9b"
                          "31m\x80\xff"),
            "\\x9b31m\\x80\xff");
  // These have the same bytes inside characters; the last one is cut off.
  EXPECT_EQ(escapedForLog("\xe2\x80\x9b\xf0\x9f\x93\xb7\xd6\x9b"),
            "\xe2\x80\x9b\xf0\x9f\x93\xb7\xd6\x9b");
  EXPECT_EQ(escapedForLog("\xe2\x80"), "\xe2\\x80");
}

}  // namespace
}  // namespace snaplift
