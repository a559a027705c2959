#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "foundation/PortableName.h"

namespace snaplift {
namespace {

TEST(PortableName, isTakenByEveryFileSystemAndLeadsNowhere) {
  const std::pair<std::string, std::string> cases[] = {
      {"Anna's Phone", "Anna's Phone"},
      {"", "_"},
      {"..", "_"},
      {"a/b", "a_b"},
      {"<a>:\"\\|?*", "_a_______"},
      {" x. ", "x"},
      {".hidden", "_.hidden"},
      {"CON", "_CON"},
      {"nul.txt", "_nul.txt"},
      {"Lpt1 .x", "_Lpt1 .x"},
      {"COM\u00b9", "_COM\u00b9"},
      {"COM10", "COM10"},
      {"a\x1b[31m\x7f\n", "a_[31m__"},
      {std::string("a\0b", 3), "a_b"},
      {"\u202etxt", "_txt"},
      {"\ufffe\U0001ffff", "__"},
      {"\xff\xfeZoë", "__Zoë"},
      {std::string(99, 'x') + "ë", std::string(99, 'x')},
      {std::string(98, 'x') + ". y", std::string(98, 'x')},
  };
  for (const auto& [text, name] : cases) {
    EXPECT_EQ(portableName(text), name) << text;
  }
  EXPECT_EQ(foldedCase("ZOË Ab\xff"), "zoë ab\xff");
}

}  // namespace
}  // namespace snaplift
