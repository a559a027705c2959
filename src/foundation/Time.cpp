#include "foundation/Time.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <mutex>

#include <unicode/datefmt.h>
#include <unicode/unistr.h>

#include "foundation/UserLocale.h"

namespace snaplift {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

// A civil date and time of day. The calendar of std::chrono ends at the year 32767; the days of an
// Instant reach further, so the year is kept as a plain number (proleptic Gregorian).
struct CivilTime {
  std::int64_t year;
  unsigned month, day, hour, minute, second;
};

CivilTime civilTime(Instant instant) {
  const auto day = std::chrono::floor<std::chrono::days>(instant);
  const std::chrono::hh_mm_ss time{std::chrono::floor<std::chrono::seconds>(instant - day)};
  // 400 Gregorian years are 146,097 days: fold the date into the calendar's own range.
  constexpr std::int64_t daysOfEra = 146097;
  const std::int64_t days = day.time_since_epoch().count();
  const std::int64_t era = (days >= 0 ? days : days - (daysOfEra - 1)) / daysOfEra;
  const std::chrono::year_month_day date{
      std::chrono::sys_days{std::chrono::days{days - era * daysOfEra}}};
  return {era * 400 + static_cast<int>(date.year()),
          static_cast<unsigned>(date.month()),
          static_cast<unsigned>(date.day()),
          static_cast<unsigned>(time.hours().count()),
          static_cast<unsigned>(time.minutes().count()),
          static_cast<unsigned>(time.seconds().count())};
}

std::string formatted(const char* format, Instant instant) {
  const CivilTime t = civilTime(instant);
  const char* sign = t.year < 0 ? "-" : t.year > 9999 ? "+" : "";
  char text[64];
  std::snprintf(text, sizeof text, format, sign, static_cast<long long>(std::abs(t.year)), t.month,
                t.day, t.hour, t.minute, t.second);
  return text;
}

// One formatter for the process: making one costs more than a thousand dates. ICU's formatters are
// not for use by two threads at once.
class DateWords {
public:
  explicit DateWords(icu::DateFormat* (*make)()) : m_format(make()) {}

  // `otherwise` where the locale machinery has no answer.
  std::string textOf(Instant instant, const std::string& otherwise) {
    std::string text;
    if (m_format) {
      const std::lock_guard lock(m_mutex);
      icu::UnicodeString words;
      const auto time = std::chrono::floor<milliseconds>(instant).time_since_epoch();
      m_format->format(static_cast<UDate>(time.count()), words).toUTF8String(text);
    }
    return text.empty() ? otherwise : text;
  }

private:
  std::mutex m_mutex;
  const std::unique_ptr<icu::DateFormat> m_format;
};

}  // namespace

Instant instantFromUnixTime(std::int64_t seconds, std::int64_t nanoseconds) {
  // A day less than the counter holds: rounding down to the day stays inside it.
  constexpr std::int64_t limit = microseconds::max().count() / 1'000'000 - 86'400;
  const std::int64_t kept = std::clamp(seconds, -limit, limit);
  return Instant(std::chrono::seconds(kept) + microseconds(nanoseconds / 1000));
}

std::string rfc3339Text(Instant instant) {
  return formatted("%s%04lld-%02u-%02uT%02u:%02u:%02uZ", instant);
}

std::string defaultDateText(Instant instant) {
  return formatted("%s%04lld-%02u-%02u %02u:%02u:%02u +0000", instant);
}

std::optional<std::chrono::year_month> localMonth(Instant instant) {
  const std::time_t seconds = static_cast<std::time_t>(
      std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch().count());
  std::tm local{};
  if (!::localtime_r(&seconds, &local) || local.tm_year < -900 || local.tm_year > 8099) {
    return std::nullopt;
  }
  return std::chrono::year(local.tm_year + 1900) / (local.tm_mon + 1);
}

std::optional<std::string> localMonthText(Instant instant) {
  const auto month = localMonth(instant);
  char text[16];
  if (month) {
    std::snprintf(text, sizeof text, "%04d-%02u", static_cast<int>(month->year()),
                  static_cast<unsigned>(month->month()));
  }
  return month ? std::optional<std::string>(text) : std::nullopt;
}

std::string monthTitle(Instant instant) {
  static DateWords words([] {
    UErrorCode error = U_ZERO_ERROR;
    icu::DateFormat* format =
        icu::DateFormat::createInstanceForSkeleton("yMMMM", gregorianLocale("LC_TIME"), error);
    if (format) {
      format->setContext(UDISPCTX_CAPITALIZATION_FOR_BEGINNING_OF_SENTENCE, error);
    }
    return format;
  });
  return words.textOf(instant, rfc3339Text(instant).substr(0, 7));
}

std::string longDateText(Instant instant) {
  static DateWords words([] {
    return icu::DateFormat::createDateInstance(icu::DateFormat::kLong, userLocale("LC_TIME"));
  });
  return words.textOf(instant, rfc3339Text(instant).substr(0, 10));
}

std::string mediumDateText(Instant instant) {
  static DateWords words([] {
    return icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, userLocale("LC_TIME"));
  });
  return words.textOf(instant, rfc3339Text(instant).substr(0, 10));
}

std::string timeOfDayText(Instant instant) {
  static DateWords words([] {
    return icu::DateFormat::createTimeInstance(icu::DateFormat::kMedium, userLocale("LC_TIME"));
  });
  return words.textOf(instant, rfc3339Text(instant).substr(11, 8));
}

}  // namespace snaplift
