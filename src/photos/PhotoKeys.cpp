#include "photos/PhotoKeys.h"

#include <algorithm>
#include <iterator>

#include "foundation/NameText.h"
#include "photos/LinearOrder.h"

namespace snaplift {
namespace {

// Ascending numbers for ascending dates, which lie on both sides of 1970.
std::uint64_t numberOf(Instant date) {
  return static_cast<std::uint64_t>(date.time_since_epoch().count()) ^ std::uint64_t{1} << 63U;
}

}  // namespace

PhotoKeys::PhotoKeys(const std::vector<ImageItem*>& photos) : m_items(photos) {
  m_photos.reserve(photos.size());
  for (const ImageItem* photo : photos) {
    const PhotoInfo info = photo->info();
    m_photos.push_back({info.date().value_or(noDate), info.size.value_or(noSize),
                        info.kind == PhotoKind::Original});
  }
}

std::string_view PhotoKeys::path(std::size_t photo) {
  foldPaths();
  const std::size_t begin = photo == 0 ? 0 : m_pathEnds[photo - 1];
  return std::string_view(m_paths).substr(begin, m_pathEnds[photo] - begin);
}

void PhotoKeys::foldPaths() {
  if (m_pathEnds.size() == count()) {
    return;
  }
  m_pathEnds.reserve(count());
  for (const ImageItem* photo : m_items) {
    m_paths += searchableText(photo->info().devicePath);
    m_pathEnds.push_back(m_paths.size());
  }
}

template <class Value>
std::vector<std::uint64_t> PhotoKeys::numbers(bool isDescending, Value valueOf) const {
  constexpr std::uint64_t last = std::numeric_limits<std::uint64_t>::max();
  std::vector<std::uint64_t> numbers;
  numbers.reserve(count());
  for (std::size_t photo = 0; photo < count(); ++photo) {
    const std::optional<std::uint64_t> value = valueOf(photo);
    numbers.push_back(!value ? last : isDescending ? ~*value : *value);
  }
  return numbers;
}

std::vector<std::uint64_t> PhotoKeys::numbersFor(PhotoOrder order, bool isDescending) {
  using Number = std::optional<std::uint64_t>;
  switch (order) {
    case PhotoOrder::Date:
      return numbers(isDescending, [this](std::size_t photo) {
        const auto known = date(photo);
        return known ? Number(numberOf(*known)) : std::nullopt;
      });
    case PhotoOrder::Name:
      rankNames();
      return numbers(isDescending, [this](std::size_t photo) { return Number(m_ranks[photo]); });
    case PhotoOrder::Size:
      return numbers(isDescending, [this](std::size_t photo) {
        const std::uint64_t size = m_photos[photo].size;
        return size == noSize ? std::nullopt : Number(size);
      });
    case PhotoOrder::Backup:
      break;
  }
  return numbers(isDescending, [](std::size_t photo) { return Number(photo); });
}

std::vector<std::uint64_t> PhotoKeys::numbersForMonths(bool isDescending) {
  return numbers(isDescending, [this](std::size_t photo) {
    const int of = month(photo);
    return of == noMonth ? std::nullopt : std::optional(static_cast<std::uint64_t>(of));
  });
}

int PhotoKeys::month(std::size_t photo) {
  findMonths();
  return m_months[photo];
}

void PhotoKeys::findMonths() {
  if (m_months.size() == count()) {
    return;
  }
  m_months.reserve(count());
  for (std::size_t photo = 0; photo < count(); ++photo) {
    const auto known = date(photo);
    const auto of = known ? localMonth(*known) : std::nullopt;
    m_months.push_back(of ? 12 * static_cast<int>(of->year()) +
                                static_cast<int>(static_cast<unsigned>(of->month())) - 1
                          : noMonth);
  }
}

void PhotoKeys::rankNames() {
  if (m_ranks.size() == count()) {
    return;
  }
  const NameOrder order;
  std::vector<std::string> names;
  names.reserve(count());
  std::ranges::transform(m_items, std::back_inserter(names),
                         [&](const ImageItem* photo) { return order.keyOf(photo->info().name()); });
  m_ranks = ranksOf(names);
}

}  // namespace snaplift
