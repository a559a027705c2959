#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "backups/VersionCompare.h"

namespace snaplift {
namespace {

using Version = std::optional<std::string>;

TEST(VersionCompare, comparesNumbersByValue) {
  struct Case {
    Version a, b;
    int result;
  };
  const std::string huge(400, '9');
  for (const Case& c : {Case{"5.0.1", "5", 1},      Case{"5.0", "5", 0},
                        Case{"5", "5.0.0", 0},      Case{"10.2", "5", 1},
                        Case{"4.3.3", "5", -1},     Case{"4.10", "4.9", 1},
                        Case{"005", "5", 0},        Case{"1.0", "1", 0},
                        Case{"0.9", "1", -1},       Case{"", "1", -1},
                        Case{"", "0", -1},          Case{std::nullopt, "1", -1},
                        Case{std::nullopt, "0", 0}, Case{std::nullopt, std::nullopt, 0},
                        Case{"3.", "3", -1},        Case{"5b2", "5b10", -1},
                        Case{"5B", "5b", -1},       Case{"five", "5", 1},
                        Case{huge, huge + "0", -1}, Case{"1." + huge, "1." + huge, 0}}) {
    EXPECT_EQ(compareVersionStrings(c.a, c.b), c.result)
        << c.a.value_or("(absent)") << " and " << c.b.value_or("(absent)");
    EXPECT_EQ(compareVersionStrings(c.b, c.a), -c.result)
        << c.b.value_or("(absent)") << " and " << c.a.value_or("(absent)");
  }
}

}  // namespace
}  // namespace snaplift
