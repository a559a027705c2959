#include "foundation/Time.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <mutex>
#include <string_view>

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

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

// The locale that rules dates, by the rule of every program here. ICU's own default reads other
// variables. "C" and "POSIX" are American English to ICU.
icu::Locale localeOfDates() {
  for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
    const char* name = std::getenv(variable);
    if (name && *name) {
      const std::string_view language = std::string_view(name).substr(0, 2);
      return language == "C" || language == "C." || language == "PO"
                 ? icu::Locale::getUS()
                 : icu::Locale::createCanonical(name);
    }
  }
  return icu::Locale::getUS();
}

// One formatter for the process: making one costs more than a thousand dates. ICU's formatters are
// not for use by two threads at once.
class DateWords {
public:
  explicit DateWords(icu::DateFormat* (*make)(const icu::Locale& locale))
      : m_format(make(localeOfDates())) {}

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

std::optional<std::string> localMonthText(Instant instant) {
  const std::time_t seconds = static_cast<std::time_t>(
      std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch().count());
  std::tm local{};
  char text[8];
  return ::localtime_r(&seconds, &local) && local.tm_year >= -900 && local.tm_year <= 8099 &&
                 std::strftime(text, sizeof text, "%Y-%m", &local) > 0
             ? std::optional<std::string>(text)
             : std::nullopt;
}

std::string longDateText(Instant instant) {
  static DateWords words([](const icu::Locale& locale) {
    return icu::DateFormat::createDateInstance(icu::DateFormat::kLong, locale);
  });
  return words.textOf(instant, rfc3339Text(instant).substr(0, 10));
}

std::string timeOfDayText(Instant instant) {
  static DateWords words([](const icu::Locale& locale) {
    return icu::DateFormat::createTimeInstance(icu::DateFormat::kMedium, locale);
  });
  return words.textOf(instant, rfc3339Text(instant).substr(11, 8));
}

}  // namespace snaplift
