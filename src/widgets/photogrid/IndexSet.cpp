#include "widgets/photogrid/IndexSet.h"

#include <algorithm>
#include <bit>

namespace snaplift {
namespace {

constexpr int bitsPerWord = 64;

std::size_t wordOf(int index) {
  return static_cast<std::size_t>(index / bitsPerWord);
}
std::uint64_t bitOf(int index) {
  return std::uint64_t{1} << (index % bitsPerWord);
}

}  // namespace

IndexSet::IndexSet(int size)
    : m_size(std::max(size, 0)),
      m_words(static_cast<std::size_t>((m_size + bitsPerWord - 1) / bitsPerWord)) {}

bool IndexSet::contains(int index) const {
  return index >= 0 && index < m_size && (m_words[wordOf(index)] & bitOf(index)) != 0;
}

void IndexSet::insert(int index) {
  insertRange(index, index);
}

// Calls `change(word, run)` for each word of the range, with the bits of it that are in the range.
template <typename Change>
void IndexSet::forEachWord(int first, int last, Change&& change) {
  first = std::max(first, 0);
  last = std::min(last, m_size - 1);
  while (first <= last) {
    const int end = std::min(last, first | (bitsPerWord - 1));
    const std::uint64_t run = ~std::uint64_t{0} >> (bitsPerWord - 1 - (end - first));
    change(m_words[wordOf(first)], run << (first % bitsPerWord));
    first = end + 1;
  }
}

void IndexSet::insertRange(int first, int last) {
  forEachWord(first, last, [this](std::uint64_t& word, std::uint64_t run) {
    m_count += std::popcount(run & ~word);
    word |= run;
  });
}

void IndexSet::removeRange(int first, int last) {
  forEachWord(first, last, [this](std::uint64_t& word, std::uint64_t run) {
    m_count -= std::popcount(run & word);
    word &= ~run;
  });
}

void IndexSet::clear() {
  std::fill(m_words.begin(), m_words.end(), 0);
  m_count = 0;
}

void IndexSet::invert() {
  for (std::uint64_t& word : m_words) {
    word = ~word;
  }
  if (m_size % bitsPerWord != 0) {
    m_words.back() &= bitOf(m_size) - 1;
  }
  m_count = m_size - m_count;
}

std::vector<int> IndexSet::indexes() const {
  std::vector<int> result;
  result.reserve(static_cast<std::size_t>(m_count));
  for (std::size_t i = 0; i < m_words.size(); ++i) {
    for (std::uint64_t word = m_words[i]; word != 0; word &= word - 1) {
      result.push_back(static_cast<int>(i) * bitsPerWord + std::countr_zero(word));
    }
  }
  return result;
}

int IndexSet::first() const {
  const auto word = std::find_if(m_words.begin(), m_words.end(), [](auto w) { return w != 0; });
  return word == m_words.end()
             ? -1
             : static_cast<int>(word - m_words.begin()) * bitsPerWord + std::countr_zero(*word);
}

}  // namespace snaplift
