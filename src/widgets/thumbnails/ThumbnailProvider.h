#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "widgets/thumbnails/ImageBrowserItem.h"
#include "widgets/thumbnails/IndexRange.h"
#include "widgets/thumbnails/ThumbnailCache.h"
#include "widgets/thumbnails/ThumbnailLoader.h"

namespace snaplift {

// The thumbnails of one view: it knows what the view looks at, has the loader work on that and
// keeps what comes back. User interface's thread. For a photo that it knows nothing of yet it first
// looks for the embedded preview and for damage, of all visible photos before it decodes any.
class ThumbnailProvider : public QObject {
  Q_OBJECT

public:
  using ItemAt = std::function<ImageBrowserItemPointer(int index)>;

  struct Sight {
    IndexRange visible;
    bool scrollsBackwards = false;
    int pixels = 0;  // of a cell's side, on the device

    friend bool operator==(const Sight&, const Sight&) = default;
  };

  explicit ThumbnailProvider(QObject* parent = nullptr,
                             std::int64_t cacheCapacity = ThumbnailCache::defaultCapacity);
  ~ThumbnailProvider() override;

  // Other photos, or none. What is cached stays: it is known by identity, not by index.
  void setItems(ItemAt itemAt, int itemCount);
  // The same photos in another order, or only some of them: what could not be read stays known, and
  // is not read again.
  void rearrangeItems(int itemCount);
  void setSight(const Sight& sight);
  // While suspended nothing is read or decoded.
  void setSuspended(bool suspended);

  // The best that is known; null for nothing. Valid until the event loop runs.
  const Thumbnail* find(const std::string& uid) { return m_cache.find(uid); }
  bool isIdle() const { return m_loader->isIdle(); }

signals:
  // There is something better to paint for these photos of the sight.
  void thumbnailsChanged(const std::vector<int>& indexes);

private:
  void takeResults();
  void keep(ThumbnailResult result);
  void updateWork();
  void appendWork(std::vector<ThumbnailRequest>& work, ImageBrowserItemPointer item, int step);

  ThumbnailCache m_cache;
  ItemAt m_itemAt;
  int m_itemCount = 0;
  Sight m_sight;
  bool m_suspended = false;
  std::unordered_multimap<std::string, int> m_indexesInSight;
  std::shared_ptr<ThumbnailProvider*> m_self;  // what a hand-over holds, weakly
  std::unique_ptr<ThumbnailLoader> m_loader;   // last: its workers end before the rest does
};

}  // namespace snaplift
