#pragma once

namespace snaplift {

// Indexes from `first` to `last`, both included; empty where last < first.
struct IndexRange {
  int first = 0;
  int last = -1;

  bool empty() const { return last < first; }
  int count() const { return empty() ? 0 : last - first + 1; }
  bool contains(int index) const { return first <= index && index <= last; }
  friend bool operator==(const IndexRange&, const IndexRange&) = default;
};

}  // namespace snaplift
