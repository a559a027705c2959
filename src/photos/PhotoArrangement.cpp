#include "photos/PhotoArrangement.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "photos/LinearOrder.h"
#include "photos/PhotoQuery.h"

namespace snaplift {

void PhotoArrangement::setPhotos(std::vector<ImageItem*> photos) {
  m_photos = std::move(photos);
  m_keys.reset();
  sort();
  choose();
  findMonths();
  numberPlaces();
}

std::vector<int> PhotoArrangement::setWishes(const PhotoWishes& wishes) {
  const PhotoWishes before = std::exchange(m_wishes, wishes);
  const std::vector<std::uint32_t> shownBefore = m_shown;
  const bool isSortedAnew = wishes.order != before.order ||
                            wishes.isDescending != before.isDescending ||
                            wishes.isByMonth != before.isByMonth;
  if (isSortedAnew) {
    sort();
  }
  choose();
  findMonths();
  numberPlaces();
  std::vector<int> moves(shownBefore.size());
  std::ranges::transform(shownBefore, moves.begin(), [&](std::uint32_t i) { return m_places[i]; });
  return moves;
}

void PhotoArrangement::numberPlaces() {
  m_places.assign(m_photos.size(), -1);
  for (std::size_t place = 0; place < m_shown.size(); ++place) {
    m_places[m_shown[place]] = static_cast<int>(place);
  }
}

PhotoKeys& PhotoArrangement::keys() {
  if (!m_keys) {
    m_keys = std::make_unique<PhotoKeys>(m_photos);
  }
  return *m_keys;
}

void PhotoArrangement::sort() {
  m_sorted.resize(m_photos.size());
  std::iota(m_sorted.begin(), m_sorted.end(), 0U);
  if (m_wishes.order != PhotoOrder::Backup || m_wishes.isDescending) {
    orderByKey(m_sorted, keys().numbersFor(m_wishes.order, m_wishes.isDescending));
  }
  if (m_wishes.isByMonth) {
    orderByKey(m_sorted, keys().numbersForMonths(m_wishes.isDescending));
  }
}

void PhotoArrangement::choose() {
  const PhotoQuery query(m_wishes.text);
  m_hiddenKinds = 0;
  if (query.isEmpty() && !m_wishes.onlyOriginals) {
    m_shown = m_sorted;
    return;
  }
  m_shown.clear();
  PhotoKeys& known = keys();
  for (const std::uint32_t photo : m_sorted) {
    if (m_wishes.onlyOriginals && !known.isOriginal(photo)) {
      ++m_hiddenKinds;
    } else if (query.isEmpty() || query.finds(known.path(photo), known.date(photo))) {
      m_shown.push_back(photo);
    }
  }
}

void PhotoArrangement::findMonths() {
  m_months.clear();
  if (!m_wishes.isByMonth) {
    return;
  }
  std::optional<int> last;
  for (const std::uint32_t photo : m_shown) {
    const int month = keys().month(photo);
    if (month != last) {
      m_months.push_back({month == PhotoKeys::noMonth ? std::nullopt : keys().date(photo), 0});
    }
    ++m_months.back().count;
    last = month;
  }
}

}  // namespace snaplift
