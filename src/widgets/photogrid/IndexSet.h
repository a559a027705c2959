#pragma once

#include <cstdint>
#include <vector>

namespace snaplift {

// A set of indexes below a fixed size, one bit each. It holds a grid's selection: a rubber band
// over half the columns of 100,000 photos is thousands of separate runs, and a list of ranges that
// is compared pairwise takes seconds where this takes a fraction of a millisecond and 12 kB.
//
// Indexes outside 0 to size() - 1 are never members; inserting one does nothing.
class IndexSet {
public:
  IndexSet() = default;
  explicit IndexSet(int size);

  int size() const { return m_size; }
  int count() const { return m_count; }
  bool empty() const { return m_count == 0; }
  bool contains(int index) const;

  void insert(int index);
  // From `first` to `last`, both included; nothing where last < first.
  void insertRange(int first, int last);
  void removeRange(int first, int last);
  void clear();
  void invert();

  // The members in ascending order.
  std::vector<int> indexes() const;
  // The smallest member, or -1.
  int first() const;

  friend bool operator==(const IndexSet&, const IndexSet&) = default;

private:
  template <typename Change>
  void forEachWord(int first, int last, Change&& change);

  int m_size = 0;
  int m_count = 0;
  std::vector<std::uint64_t> m_words;
};

}  // namespace snaplift
