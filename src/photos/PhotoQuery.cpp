#include "photos/PhotoQuery.h"

#include <algorithm>

#include "foundation/DateWords.h"
#include "foundation/NameText.h"

namespace snaplift {
namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string_view withoutBlanksAround(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

}  // namespace

// Without a word, none of what the words of two languages need is loaded.
PhotoQuery::PhotoQuery(std::string_view text) {
  const std::string_view words = withoutBlanksAround(text);
  if (!words.empty()) {
    m_part = searchableText(words);
    m_span = timeSpanOfWords(words);
  }
}

bool PhotoQuery::finds(std::string_view path, std::optional<Instant> date) const {
  return (m_span && date && m_span->contains(*date)) || path.find(m_part) != std::string_view::npos;
}

}  // namespace snaplift
