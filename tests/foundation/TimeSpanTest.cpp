#include <cstdint>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "foundation/DateWords.h"

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

TEST(TimeSpan, isWhatPeopleCallYearsMonthsAndDays) {
  ::setenv("TZ", "UTC", 1);
  ::tzset();
  ::setenv("LC_ALL", "es_ES.UTF-8", 1);
  const auto daysOf = [](const char* text) {
    const auto span = timeSpanOfWords(text);
    const auto day = [](Instant instant) { return rfc3339Text(instant).substr(0, 10); };
    return span ? day(span->begin) + " " + day(span->end) : "";
  };
  const std::pair<const char*, const char*> cases[] = {
      {"2011", "2011-01-01 2012-01-01"},
      {"June 2011", "2011-06-01 2011-07-01"},
      {"jun 2011", "2011-06-01 2011-07-01"},
      {"SEPT. 2011", "2011-09-01 2011-10-01"},
      {"2011 december", "2011-12-01 2012-01-01"},
      {"enero de 2012", "2012-01-01 2012-02-01"},
      {"12 de junio de 2011", "2011-06-12 2011-06-13"},
      {"June 12, 2011", "2011-06-12 2011-06-13"},
      {"06/2011", "2011-06-01 2011-07-01"},
      {"2011-6", "2011-06-01 2011-07-01"},
      {"2011/2/28", "2011-02-28 2011-03-01"},
      {"2011-06-12", "2011-06-12 2011-06-13"},
      {"4.3.2011", "2011-03-04 2011-03-05"},
      {"4/3/2011", "2011-03-04 2011-03-05"},
      {"12/31/2011", "2011-12-31 2012-01-01"},
      {"\u0662\u0660\u0661\u0661", "2011-01-01 2012-01-01"},
  };
  for (const auto& [text, days] : cases) {
    EXPECT_EQ(daysOf(text), days) << text;
  }
  for (const char* text : {"june", "ju 2011", "ma 2011", "junk 2011", "2011 june july", "2011 2012",
                           "13/2011", "30/2/2011", "31/31/2011", "1 2 3 2011", "20110612", "0000",
                           "12/2011/6 june", "", "de", "img 2011", "2011e"}) {
    EXPECT_EQ(daysOf(text), "") << text;
  }
  EXPECT_EQ(daysOf(std::string(100'000, '1').c_str()), "");
}

}  // namespace
}  // namespace snaplift
