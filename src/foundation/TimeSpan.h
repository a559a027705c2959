#pragma once

#include <optional>
#include <string_view>

#include "foundation/Time.h"

namespace snaplift {

// What a person means by a date: from `begin` until just before `end`.
struct TimeSpan {
  Instant begin, end;
};

// "2011-10-12" is that day in the local time zone; "2011-10-12T08:30:00Z", or any other time of RFC
// 3339, that second or that part of one. Nothing for all else.
std::optional<TimeSpan> timeSpanOfText(std::string_view whole);

}  // namespace snaplift
