#include "app/details/PhotoSums.h"

#include <algorithm>
#include <utility>

namespace snaplift {

void PhotoSums::add(const PhotoInfo& info) {
  ++(info.media == PhotoMedia::Film ? films : photos);
  bytes += info.size.value_or(0);
  unmeasured += info.size ? 0 : 1;
  ++kinds.at(static_cast<std::size_t>(info.kind));
  if (const auto date = info.date()) {
    first = first ? std::min(*first, *date) : *date;
    last = last ? std::max(*last, *date) : *date;
  }
}

void PhotoSummer::sum(std::vector<const ImageItem*> photos) {
  const std::uint64_t asked = ++m_asked;
  m_thread = std::jthread([this, asked, list = std::move(photos)](const std::stop_token& stop) {
    PhotoSums sums;
    for (const ImageItem* photo : list) {
      if (stop.stop_requested()) {
        return;
      }
      sums.add(photo->info());
    }
    QMetaObject::invokeMethod(
        this,
        [this, asked, sums] {
          if (asked == m_asked) {
            emit summed(sums);
          }
        },
        Qt::QueuedConnection);
  });
}

void PhotoSummer::stop() {
  ++m_asked;
  m_thread = {};
}

}  // namespace snaplift
