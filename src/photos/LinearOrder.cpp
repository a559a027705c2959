#include "photos/LinearOrder.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>

namespace snaplift {
namespace {

constexpr unsigned digitBits = 8;
constexpr std::size_t digitValues = std::size_t{1} << digitBits;
constexpr std::size_t digits = 64 / digitBits;

struct Keyed {
  std::uint64_t key;
  std::uint32_t index;
};

std::size_t digitOf(std::uint64_t key, std::size_t digit) {
  return (key >> (digit * digitBits)) % digitValues;
}

std::size_t commonBeginning(const std::vector<std::string>& texts) {
  std::size_t length = texts.empty() ? 0 : texts.front().size();
  for (const std::string& text : texts) {
    const auto difference = std::mismatch(
        texts.front().begin(),
        texts.front().begin() + static_cast<std::ptrdiff_t>(std::min(length, text.size())),
        text.begin());
    length = static_cast<std::size_t>(difference.first - texts.front().begin());
  }
  return length;
}

// The eight bytes from `begin` on as a number that compares as they do.
std::uint64_t bytesFrom(std::string_view text, std::size_t begin) {
  std::uint64_t bytes = 0;
  for (std::size_t i = begin; i < begin + sizeof bytes; ++i) {
    bytes = bytes << 8U | (i < text.size() ? static_cast<unsigned char>(text[i]) : 0U);
  }
  return bytes;
}

}  // namespace

void orderByKey(std::vector<std::uint32_t>& order, const std::vector<std::uint64_t>& keys) {
  std::array<std::array<std::size_t, digitValues>, digits> counts{};
  std::vector<Keyed> from, to(order.size());
  from.reserve(order.size());
  for (const std::uint32_t index : order) {
    const std::uint64_t key = keys[index];
    from.push_back({key, index});
    for (std::size_t digit = 0; digit < digits; ++digit) {
      ++counts[digit][digitOf(key, digit)];
    }
  }
  for (std::size_t digit = 0; digit < digits; ++digit) {
    auto& places = counts[digit];
    if (std::ranges::find(places, order.size()) != places.end()) {
      continue;  // one digit for all
    }
    std::exclusive_scan(places.begin(), places.end(), places.begin(), std::size_t{0});
    for (const Keyed& one : from) {
      to[places[digitOf(one.key, digit)]++] = one;
    }
    from.swap(to);
  }
  std::ranges::transform(from, order.begin(), &Keyed::index);
}

std::vector<std::uint64_t> ranksOf(const std::vector<std::string>& texts) {
  const std::size_t begin = commonBeginning(texts);
  std::vector<std::uint64_t> keys(texts.size());
  std::ranges::transform(texts, keys.begin(),
                         [&](const std::string& text) { return bytesFrom(text, begin); });
  std::vector<std::uint32_t> order(texts.size());
  std::iota(order.begin(), order.end(), 0U);
  orderByKey(order, keys);
  std::vector<std::uint64_t> ranks(texts.size());
  const auto isBefore = [&](std::uint32_t a, std::uint32_t b) { return texts[a] < texts[b]; };
  for (auto first = order.begin(); first != order.end();) {
    const auto last = std::find_if(
        first, order.end(), [&](std::uint32_t index) { return keys[index] != keys[*first]; });
    std::sort(first, last, isBefore);
    for (auto one = first; one != last; ++one) {
      const bool isEqual = one != first && texts[*one] == texts[*(one - 1)];
      ranks[*one] = isEqual ? ranks[*(one - 1)] : static_cast<std::uint64_t>(one - order.begin());
    }
    first = last;
  }
  return ranks;
}

}  // namespace snaplift
