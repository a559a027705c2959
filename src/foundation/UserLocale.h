#pragma once

#include <unicode/locid.h>

namespace snaplift {

// The user's locale for `category` ("LC_TIME"), by the rule of every program here: LC_ALL, else the
// category, else LANG, as they are at the call. ICU's own default reads other variables. "C" and
// "POSIX" are American English to ICU. Only for who links ICU.
icu::Locale userLocale(const char* category);

// The same with the Gregorian calendar, whatever calendar people there use: that of dates whose
// months are compared with those of others.
icu::Locale gregorianLocale(const char* category);

}  // namespace snaplift
