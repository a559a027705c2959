#pragma once

#include <optional>
#include <string_view>

#include "foundation/TimeSpan.h"

namespace snaplift {

// The time that a person means by a date as people write it: a year ("2011"), a month of one
// ("june 2011", "jun 2011", "2011-06", "6/2011"), a day ("June 12, 2011", "12.6.2011"), or whatever
// timeSpanOfText() understands. Months are called as in English or in the user's language (LC_ALL,
// else LC_TIME, else LANG, as they are at the first call), or by the beginning of such a name,
// three letters at least. Of "6/12/2011" the user's language says which is the month. All of it in
// the local time zone. Nothing for all else, such as a month without a year. Safe to call from any
// thread.
std::optional<TimeSpan> timeSpanOfWords(std::string_view text);

}  // namespace snaplift
