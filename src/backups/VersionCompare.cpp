#include "backups/VersionCompare.h"

#include <algorithm>

namespace snaplift {
namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Takes the run of digits off the front of `text`, without its leading zeros: of two such runs the
// longer is the greater number, and equally long ones compare as texts.
std::string_view takeNumber(std::string_view& text) {
  const auto end = std::ranges::find_if_not(text, isDigit);
  std::string_view run = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(run.size());
  run.remove_prefix(std::min(run.find_first_not_of('0'), run.size()));
  return run;
}

template <class T>
int order(const T& a, const T& b) {
  return a < b ? -1 : a > b ? 1 : 0;
}

int compareComponents(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    int result;
    if (isDigit(a.front()) && isDigit(b.front())) {
      const std::string_view x = takeNumber(a);
      const std::string_view y = takeNumber(b);
      result = x.size() != y.size() ? order(x.size(), y.size()) : order(x, y);
    } else {
      result = order(static_cast<unsigned char>(a.front()), static_cast<unsigned char>(b.front()));
      a.remove_prefix(1);
      b.remove_prefix(1);
    }
    if (result != 0) {
      return result;
    }
  }
  return order(a.size(), b.size());
}

// Takes the first component off `rest`; "0" where nothing is left.
std::string_view takeComponent(std::optional<std::string_view>& rest) {
  if (!rest) {
    return "0";
  }
  const std::string_view text = *rest;
  const std::size_t dot = text.find('.');
  rest = dot == std::string_view::npos ? std::nullopt : std::optional(text.substr(dot + 1));
  return text.substr(0, dot);
}

}  // namespace

int compareVersionStrings(std::optional<std::string_view> a, std::optional<std::string_view> b) {
  while (a || b) {
    const std::string_view x = takeComponent(a);
    if (const int result = compareComponents(x, takeComponent(b)); result != 0) {
      return result;
    }
  }
  return 0;
}

}  // namespace snaplift
