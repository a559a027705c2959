#include <cstdint>
#include <cstdlib>

#include <gtest/gtest.h>

#include "foundation/TimeSpan.h"

namespace snaplift {
namespace {

TEST(TimeSpan, isADayOfTheTimeZoneOrAMoment) {
  ::setenv("TZ", "Europe/Berlin", 1);
  ::tzset();
  struct Case {
    const char* text;
    std::int64_t begin, end;
  };
  for (const Case& c : {Case{"2011-10-12", 1318370400, 1318456800},
                        Case{"2011-10-30", 1319925600, 1320015600},  // 25 hours
                        Case{"2011-10-12T08:30:00Z", 1318408200, 1318408201},
                        Case{"2011-10-12 10:30:00+02:00", 1318408200, 1318408201},
                        Case{"2011-10-12t03:00:00-05:30", 1318408200, 1318408201}}) {
    const auto span = timeSpanOfText(c.text);
    ASSERT_TRUE(span) << c.text;
    EXPECT_EQ(span->begin, instantFromUnixTime(c.begin)) << c.text;
    EXPECT_EQ(span->end, instantFromUnixTime(c.end)) << c.text;
  }
  EXPECT_EQ(timeSpanOfText("2011-10-12T08:30:00.25Z")->end,
            instantFromUnixTime(1318408200, 250'001'000));
  for (const char* text :
       {"", "2011", "2011-10-1", "2011-02-29", "2011-13-01", "+011-10-12", "2011-10-12T",
        "2011-10-12T08:30Z", "2011-10-12T08:30:00", "2011-10-12T24:00:00Z", "2011-10-12T08:30:00.Z",
        "2011-10-12T08:30:00+2", "2011-10-12 ", "2011-10-12T08:30:00ZZ"}) {
    EXPECT_FALSE(timeSpanOfText(text)) << text;
  }
  EXPECT_EQ(localMonthText(instantFromUnixTime(1317419999)), "2011-09");
  EXPECT_EQ(localMonthText(instantFromUnixTime(1317420000)), "2011-10");
  EXPECT_EQ(localMonthText(instantFromUnixTime(std::int64_t{1} << 50)), std::nullopt);
}

}  // namespace
}  // namespace snaplift
