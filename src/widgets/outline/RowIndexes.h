#pragma once

#include <set>

namespace snaplift {

// Row numbers of an outline, each once, in ascending order. Row 0 is the topmost.
using RowIndexes = std::set<int>;

}  // namespace snaplift
