#include "foundation/DateWords.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <unicode/dtfmtsym.h>
#include <unicode/smpdtfmt.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "foundation/NameText.h"
#include "foundation/UserLocale.h"

namespace snaplift {
namespace {

constexpr std::size_t shortestBeginning = 3;  // of a month's name
constexpr std::int32_t longestText = 100;     // no date is longer

icu::UnicodeString folded(const icu::UnicodeString& text) {
  std::string utf8;
  return icu::UnicodeString::fromUTF8(searchableText(text.toUTF8String(utf8)));
}

// The words that stand in a pattern of dates beside its fields, each between blanks: "de" in
// "d 'de' MMMM 'de' y".
icu::UnicodeString wordsBetweenFields(const icu::UnicodeString& pattern) {
  icu::UnicodeString words(u" ");
  bool isQuoted = false;
  for (std::int32_t i = 0; i < pattern.length(); ++i) {
    const char16_t c = pattern.charAt(i);
    isQuoted = isQuoted != (c == u'\'');
    const bool isOfWord = u_isalpha(c) && (isQuoted || c >= 0x80);
    words += isOfWord ? c : u' ';
  }
  return words + u" ";
}

// What a language has for dates: its months, the words between them, and whether days come first.
class DateLanguage {
public:
  explicit DateLanguage(const icu::Locale& locale) {
    UErrorCode error = U_ZERO_ERROR;
    const icu::DateFormatSymbols symbols(locale, error);
    for (const auto context :
         {icu::DateFormatSymbols::FORMAT, icu::DateFormatSymbols::STANDALONE}) {
      for (const auto width : {icu::DateFormatSymbols::WIDE, icu::DateFormatSymbols::ABBREVIATED}) {
        std::int32_t count = 0;
        const icu::UnicodeString* names = symbols.getMonths(count, context, width);
        for (std::int32_t i = 0; names && i < std::min(count, 12); ++i) {
          m_months.emplace_back(i + 1, folded(names[i]).findAndReplace(u".", u""));
        }
      }
    }
    m_fillers = folded(wordsBetweenFields(patternOf("yMMMMd", locale)));
    const icu::UnicodeString digits = patternOf("yMd", locale);
    m_isDayFirst = digits.indexOf(u'd') < digits.indexOf(u'M');
  }

  // 1 to 12; 0 for a word that names no month, or more than one.
  int monthOf(const icu::UnicodeString& word) const {
    int found = 0;
    for (const auto& [month, name] : m_months) {
      if (name == word) {
        return month;
      }
      if (word.length() >= static_cast<std::int32_t>(shortestBeginning) && name.startsWith(word)) {
        found = found == 0 || found == month ? month : -1;
      }
    }
    return std::max(found, 0);
  }
  bool isFiller(const icu::UnicodeString& word) const {
    return m_fillers.indexOf(u" " + word + u" ") >= 0;
  }
  bool isDayFirst() const { return m_isDayFirst; }

private:
  static icu::UnicodeString patternOf(const char* skeleton, const icu::Locale& locale) {
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<icu::DateFormat> format(
        icu::DateFormat::createInstanceForSkeleton(skeleton, locale, error));
    icu::UnicodeString pattern;
    if (const auto* simple = dynamic_cast<const icu::SimpleDateFormat*>(format.get())) {
      simple->toPattern(pattern);
    }
    return pattern;
  }

  std::vector<std::pair<int, icu::UnicodeString>> m_months;
  icu::UnicodeString m_fillers;
  bool m_isDayFirst = false;
};

// Reads one text, word by word and number by number.
class DateReader {
public:
  DateReader(const DateLanguage& own, const DateLanguage& english)
      : m_own(own), m_english(english) {}

  std::optional<TimeSpan> read(const icu::UnicodeString& text) {
    for (std::int32_t i = 0; i < text.length() && m_isRight;) {
      const std::int32_t begin = i;
      const UChar32 first = text.char32At(i);
      const auto takeWhile = [&](auto isOne) {
        while (i < text.length() && isOne(text.char32At(i))) {
          i = text.moveIndex32(i, 1);
        }
      };
      if (u_isdigit(first)) {
        takeWhile([](UChar32 c) { return u_isdigit(c); });
        takeNumber(text.tempSubStringBetween(begin, i));
      } else if (u_isalpha(first)) {
        takeWhile([](UChar32 c) { return u_isalpha(c) || u_getCombiningClass(c) > 0; });
        takeWord(text.tempSubStringBetween(begin, i));
      } else {
        m_hasDots = m_hasDots || first == '.';
        i = text.moveIndex32(i, 1);
      }
    }
    return m_isRight && m_year > 0 ? span() : std::nullopt;
  }

private:
  void takeNumber(const icu::UnicodeString& digits) {
    int number = 0;
    const std::int32_t count = digits.countChar32();
    for (std::int32_t i = 0; i < digits.length() && count <= 4; i = digits.moveIndex32(i, 1)) {
      number = 10 * number + u_charDigitValue(digits.char32At(i));
    }
    if (count == 4 && m_year == 0) {
      m_year = number;
      m_isYearFirst = m_numbers.empty();
    } else {
      m_numbers.push_back(number);
      m_isRight = m_isRight && count <= 2 && number > 0 && m_numbers.size() <= 2;
    }
  }

  void takeWord(const icu::UnicodeString& word) {
    const int own = m_own.monthOf(word);
    const int month = own > 0 ? own : m_english.monthOf(word);
    if (month > 0) {
      m_isRight = m_isRight && m_month == 0;
      m_month = month;
    } else {
      m_isRight = m_isRight && m_own.isFiller(word);
    }
  }

  std::optional<TimeSpan> span() {
    if (m_month > 0) {
      return m_numbers.size() > 1 ? std::nullopt : span(m_numbers.empty() ? 0 : m_numbers[0]);
    }
    if (m_numbers.size() < 2) {
      m_month = m_numbers.empty() ? 0 : m_numbers[0];
      return span(0);
    }
    // "12.6.2011" begins with the day wherever dots are used.
    const bool isDayFirst = !m_isYearFirst && (m_hasDots || m_own.isDayFirst());
    const bool isOnlyDay = m_numbers[isDayFirst ? 1 : 0] > 12 && !m_isYearFirst;
    m_month = m_numbers[isDayFirst != isOnlyDay ? 1 : 0];
    return span(m_numbers[isDayFirst != isOnlyDay ? 0 : 1]);
  }

  std::optional<TimeSpan> span(int day) const {
    const int month = std::max(m_month, 1);
    if (!(std::chrono::year(m_year) / month / std::max(day, 1)).ok()) {
      return std::nullopt;
    }
    const Instant begin = startOfLocalDay(m_year, month, std::max(day, 1));
    if (day > 0) {
      return TimeSpan{begin, startOfLocalDay(m_year, month, day + 1)};
    }
    return TimeSpan{begin, m_month > 0 ? startOfLocalDay(m_year, month + 1, 1)
                                       : startOfLocalDay(m_year + 1, 1, 1)};
  }

  const DateLanguage& m_own;
  const DateLanguage& m_english;
  bool m_isRight = true, m_hasDots = false, m_isYearFirst = false;
  int m_year = 0, m_month = 0;
  std::vector<int> m_numbers;  // days and months, as they come
};

}  // namespace

std::optional<TimeSpan> timeSpanOfWords(std::string_view text) {
  if (const auto span = timeSpanOfText(text)) {
    return span;
  }
  static const DateLanguage own(gregorianLocale("LC_TIME"));
  static const DateLanguage english(icu::Locale::getUS());
  const icu::UnicodeString words = icu::UnicodeString::fromUTF8(
      searchableText(text.substr(0, static_cast<std::size_t>(longestText) * 4)));
  return words.length() > longestText ? std::nullopt : DateReader(own, english).read(words);
}

}  // namespace snaplift
