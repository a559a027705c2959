#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace snaplift {

// A point in time, UTC, in microseconds since 1970-01-01. Microseconds keep the order of files that
// were written within one second and still reach 290,000 years either way; what lies beyond (a
// damaged file system may say anything) is cut to that range.
using Instant = std::chrono::sys_time<std::chrono::microseconds>;

// The instant `seconds` and `nanoseconds` after 1970-01-01, cut to the range of Instant.
Instant instantFromUnixTime(std::int64_t seconds, std::int64_t nanoseconds = 0);

// "2011-10-12T08:30:00Z": RFC 3339, UTC, whole seconds (rounded down). Years outside 0000 to 9999,
// which RFC 3339 cannot say, are written with a sign and as many digits as they need.
std::string rfc3339Text(Instant instant);

// "October 12, 2011": the date in the long style of the user's locale (LC_ALL, else LC_TIME, else
// LANG, as they are at the first call) and the local time zone, without the time. Never empty:
// where the locale machinery has no answer it is the ISO date. Safe to call from any thread.
std::string longDateText(Instant instant);

// "Oct 12, 2011": shorter, likewise.
std::string mediumDateText(Instant instant);

// "8:30:00 AM": the time of that day, with seconds, likewise.
std::string timeOfDayText(Instant instant);

// "October 2011": the month as a heading of what is of it, likewise, but always of the Gregorian
// calendar, as localMonth() is.
std::string monthTitle(Instant instant);

// The month in the local time zone; nothing for a year that has not four digits.
std::optional<std::chrono::year_month> localMonth(Instant instant);
// The same as "2011-10".
std::optional<std::string> localMonthText(Instant instant);

// "2011-10-12 08:30:00 +0000": the default text form of a date, UTC.
std::string defaultDateText(Instant instant);

}  // namespace snaplift
