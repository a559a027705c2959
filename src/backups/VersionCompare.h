#pragma once

#include <optional>
#include <string_view>

namespace snaplift {

// Compares two dotted version texts: -1 where `a` is earlier, 0 where they are equal, +1 where `a`
// is later. Component by component, a shorter list counting as if it went on with "0"; within a
// component runs of digits compare by their value, of any length, and other characters one by one.
// An absent text has no components, an empty one has one empty component, which is below any other.
int compareVersionStrings(std::optional<std::string_view> a, std::optional<std::string_view> b);

}  // namespace snaplift
