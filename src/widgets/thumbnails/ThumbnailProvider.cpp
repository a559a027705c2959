#include "widgets/thumbnails/ThumbnailProvider.h"

#include <algorithm>
#include <utility>

#include "widgets/desktop/MainThread.h"
#include "widgets/thumbnails/ThumbnailOrder.h"

namespace snaplift {
namespace {

using Kind = ThumbnailRequest::Kind;
using State = Thumbnail::State;

int longerSide(QSize size) {
  return std::max(size.width(), size.height());
}

// How many thumbnails fit into the cache with room left for what is being scrolled away.
int capacityFor(const ThumbnailCache& cache, int step) {
  const std::int64_t bytes = std::int64_t{step} * step * 4;
  return static_cast<int>(std::max<std::int64_t>(cache.capacity() * 3 / 4 / bytes, 1));
}

}  // namespace

ThumbnailProvider::ThumbnailProvider(QObject* parent, std::int64_t cacheCapacity)
    : QObject(parent), m_cache(cacheCapacity), m_self(std::make_shared<ThumbnailProvider*>(this)) {
  m_loader = std::make_unique<ThumbnailLoader>([self = std::weak_ptr(m_self)] {
    mainThread::run([self] {
      if (const auto provider = self.lock()) {
        (*provider)->takeResults();
      }
    });
  });
}

ThumbnailProvider::~ThumbnailProvider() = default;

void ThumbnailProvider::setItems(ItemAt itemAt, int itemCount) {
  m_itemAt = std::move(itemAt);
  m_cache.forgetUnread();
  rearrangeItems(itemCount);
}

void ThumbnailProvider::rearrangeItems(int itemCount) {
  m_itemCount = itemCount;
  m_sight = {};
  updateWork();
}

void ThumbnailProvider::setSight(const Sight& sight) {
  if (m_sight == sight) {
    return;
  }
  m_sight = sight;
  updateWork();
}

void ThumbnailProvider::setSuspended(bool suspended) {
  m_suspended = suspended;
  updateWork();
}

void ThumbnailProvider::takeResults() {
  std::vector<int> changed;
  for (ThumbnailResult& result : m_loader->takeResults()) {
    const auto [begin, end] = m_indexesInSight.equal_range(result.uid);
    for (auto it = begin; it != end; ++it) {
      changed.push_back(it->second);
    }
    keep(std::move(result));
  }
  if (!changed.empty()) {
    emit thumbnailsChanged(changed);
  }
}

void ThumbnailProvider::keep(ThumbnailResult result) {
  // A preview may come behind the decode that another worker began for an earlier sight.
  const Thumbnail* known = m_cache.find(result.uid);
  const bool isWorse =
      known != nullptr && known->state == State::Ready && result.thumbnail.state != State::Ready;
  if (!isWorse) {
    m_cache.insert(result.uid, std::move(result.thumbnail));
  }
}

void ThumbnailProvider::updateWork() {
  takeResults();
  m_indexesInSight.clear();
  std::vector<ThumbnailRequest> work;
  if (!m_suspended && m_itemAt && m_sight.pixels > 0) {
    const int step = thumbnailStep(m_sight.pixels);
    std::vector<ThumbnailRequest> decodes;
    for (const int index : thumbnailOrder({m_sight.visible, m_itemCount, m_sight.scrollsBackwards,
                                           capacityFor(m_cache, step)})) {
      ImageBrowserItemPointer item = m_itemAt(index);
      std::string uid = item->imageUID();
      if (m_sight.visible.contains(index) && m_cache.find(uid) == nullptr) {
        work.push_back({item, uid, Kind::Preview, m_sight.pixels, {}});
      }
      m_indexesInSight.emplace(std::move(uid), index);
      appendWork(decodes, std::move(item), step);
    }
    std::move(decodes.begin(), decodes.end(), std::back_inserter(work));
  }
  m_loader->setWork(std::move(work));
}

void ThumbnailProvider::appendWork(std::vector<ThumbnailRequest>& work,
                                   ImageBrowserItemPointer item, int step) {
  std::string uid = item->imageUID();
  const Thumbnail* known = m_cache.find(uid);
  if (known == nullptr || known->state == State::Unknown || known->state == State::Preview) {
    work.push_back({std::move(item), std::move(uid), Kind::Decode, step, {}});
    return;
  }
  if (known->isBroken()) {
    return;
  }
  const int side = longerSide(known->picture.size());
  const bool isWhole = side == longerSide(known->photoSize);
  if (side > step) {
    work.push_back({std::move(item), std::move(uid), Kind::Shrink, step, *known});
  } else if (known->pixels < step && !isWhole) {
    work.push_back({std::move(item), std::move(uid), Kind::Decode, step, {}});
  }
}

}  // namespace snaplift
