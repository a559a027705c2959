#include <cstdint>
#include <cstdlib>
#include <limits>

#include <gtest/gtest.h>

#include "foundation/DateWords.h"

namespace snaplift {
namespace {

TEST(Time, writesDatesOfAnyYear) {
  struct Case {
    std::int64_t seconds;
    const char* text;
  };
  for (const Case& c :
       {Case{0, "1970-01-01T00:00:00Z"}, Case{-1, "1969-12-31T23:59:59Z"},
        Case{1318408200, "2011-10-12T08:30:00Z"},
        Case{std::numeric_limits<std::int32_t>::min(), "1901-12-13T20:45:52Z"},
        Case{253402300799, "9999-12-31T23:59:59Z"}, Case{253402300800, "+10000-01-01T00:00:00Z"},
        Case{-62167219200, "0000-01-01T00:00:00Z"}, Case{-62167219201, "-0001-12-31T23:59:59Z"}}) {
    EXPECT_EQ(rfc3339Text(instantFromUnixTime(c.seconds)), c.text);
  }
  EXPECT_EQ(defaultDateText(instantFromUnixTime(1318408200, 999999999)),
            "2011-10-12 08:30:00 +0000");
}

TEST(Time, cutsWhatNoCalendarHolds) {
  for (const std::int64_t seconds :
       {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min(),
        std::int64_t{1} << 50}) {
    const Instant instant = instantFromUnixTime(seconds, 999'999'999);
    EXPECT_EQ(instant > Instant(), seconds > 0);
    EXPECT_FALSE(rfc3339Text(instant).empty());
    EXPECT_FALSE(longDateText(instant).empty());
  }
}

TEST(Time, takesADateWithDotsByItsDayFirst) {
  ::setenv("LC_ALL", "en_US.UTF-8", 1);
  EXPECT_EQ(timeSpanOfWords("4.3.2011")->begin, startOfLocalDay(2011, 3, 4));
  EXPECT_EQ(timeSpanOfWords("4/3/2011")->begin, startOfLocalDay(2011, 4, 3));
}

}  // namespace
}  // namespace snaplift
