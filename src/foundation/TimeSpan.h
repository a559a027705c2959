#pragma once

#include <optional>
#include <string_view>

#include "foundation/Time.h"

namespace snaplift {

// What a person means by a date: from `begin` until just before `end`.
struct TimeSpan {
  Instant begin, end;

  bool contains(Instant instant) const { return instant >= begin && instant < end; }
};

// When that day begins in the local time zone. Months and days beyond the last count on into the
// next year or month.
Instant startOfLocalDay(int year, int month, int day);

// "2011-10-12" is that day in the local time zone; "2011-10-12T08:30:00Z", or any other time of RFC
// 3339, that second or that part of one. Nothing for all else.
std::optional<TimeSpan> timeSpanOfText(std::string_view whole);

}  // namespace snaplift
