#include "foundation/TimeSpan.h"

#include <algorithm>
#include <charconv>
#include <ctime>

namespace snaplift {
namespace {

using std::chrono::microseconds;
using std::chrono::seconds;

// Takes numbers and marks off the beginning of a text; a text that has not what is asked for is
// remembered as wrong.
class DateText {
public:
  explicit DateText(std::string_view text) : m_rest(text) {}

  bool isRight() const { return m_isRight; }
  bool isAtEnd() const { return m_rest.empty(); }

  int takeNumber(std::size_t digits, int largest) {
    int number = 0;
    const std::string_view text = m_rest.substr(0, digits);
    const char* end = text.data() + text.size();
    const bool isNumber = text.find_first_not_of("0123456789") == std::string_view::npos &&
                          text.size() == digits &&
                          std::from_chars(text.data(), end, number).ptr == end && number <= largest;
    m_isRight = m_isRight && isNumber;
    m_rest.remove_prefix(text.size());
    return number;
  }

  // The mark that was taken, one of `marks`.
  char takeMark(std::string_view marks) {
    const char mark = m_rest.empty() ? '\0' : m_rest.front();
    m_isRight = m_isRight && !m_rest.empty() && marks.find(mark) != std::string_view::npos;
    m_rest.remove_prefix(m_rest.empty() ? 0 : 1);
    return mark;
  }

  // Digits behind a point, as far as they count here; nothing where there is none.
  std::optional<microseconds> takeFraction() {
    if (!m_rest.starts_with('.')) {
      return std::nullopt;
    }
    m_rest.remove_prefix(1);
    microseconds fraction{0}, unit{100'000};
    const std::size_t count = std::min(m_rest.find_first_not_of("0123456789"), m_rest.size());
    m_isRight = m_isRight && count > 0;
    for (const char digit : m_rest.substr(0, count)) {
      fraction += (digit - '0') * unit;
      unit /= 10;
    }
    m_rest.remove_prefix(count);
    return fraction;
  }

private:
  std::string_view m_rest;
  bool m_isRight = true;
};

// How far the local time of "Z" or "+02:00" is ahead.
seconds takeOffset(DateText& text) {
  const char mark = text.takeMark("Zz+-");
  if (mark != '+' && mark != '-') {
    return seconds{0};
  }
  const std::chrono::hours hours(text.takeNumber(2, 23));
  text.takeMark(":");
  const seconds ahead = hours + std::chrono::minutes(text.takeNumber(2, 59));
  return mark == '-' ? -ahead : ahead;
}

}  // namespace

Instant startOfLocalDay(int year, int month, int day) {
  std::tm local{};
  local.tm_year = year - 1900;
  local.tm_mon = month - 1;
  local.tm_mday = day;
  local.tm_isdst = -1;
  return instantFromUnixTime(std::mktime(&local));
}

std::optional<TimeSpan> timeSpanOfText(std::string_view whole) {
  DateText text(whole);
  const int year = text.takeNumber(4, 9999);
  text.takeMark("-");
  const int month = text.takeNumber(2, 12);
  text.takeMark("-");
  const int day = text.takeNumber(2, 31);
  const std::chrono::year_month_day date = std::chrono::year(year) / month / day;
  if (!text.isRight() || !date.ok()) {
    return std::nullopt;
  }
  if (text.isAtEnd()) {
    return TimeSpan{startOfLocalDay(year, month, day), startOfLocalDay(year, month, day + 1)};
  }
  text.takeMark("Tt ");
  Instant time = std::chrono::sys_days(date) + std::chrono::hours(text.takeNumber(2, 23));
  text.takeMark(":");
  time += std::chrono::minutes(text.takeNumber(2, 59));
  text.takeMark(":");
  time += seconds(text.takeNumber(2, 60));  // a leap second
  const std::optional<microseconds> fraction = text.takeFraction();
  time += fraction.value_or(microseconds{0});
  time -= takeOffset(text);
  if (!text.isRight() || !text.isAtEnd()) {
    return std::nullopt;
  }
  return TimeSpan{time, time + (fraction ? microseconds{1} : microseconds(seconds{1}))};
}

}  // namespace snaplift
