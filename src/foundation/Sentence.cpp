#include "foundation/Sentence.h"

#include <string_view>

namespace snaplift {

// In English the words stand in their order.
std::string Sentence::text() const {
  std::string text;
  std::string_view rest = english;
  for (const std::string& word : words) {
    const std::size_t mark = rest.find('%');
    text.append(rest.substr(0, mark)).append(word);
    rest = mark == std::string_view::npos ? std::string_view() : rest.substr(mark + 2);
  }
  return text.append(rest);
}

}  // namespace snaplift
