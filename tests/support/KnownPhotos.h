#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backups/ImageItem.h"

namespace snaplift::test {

struct KnownPhoto {
  std::string path;       // on the device
  std::int64_t date = 0;  // in seconds since 1970; 0: none
  std::optional<std::uint64_t> size = {};
};

// A backup that knows this of its photos and can read none of them.
class KnownPhotos : public ImageDataSource {
public:
  explicit KnownPhotos(std::vector<KnownPhoto> photos) : m_photos(std::move(photos)) {
    for (std::size_t i = 0; i < m_photos.size(); ++i) {
      m_items.emplace_back(m_photos[i].path, *this, i);
    }
  }

  std::vector<ImageItem*> items() {
    std::vector<ImageItem*> items;
    for (ImageItem& item : m_items) {
      items.push_back(&item);
    }
    return items;
  }

  std::optional<PhotoInfo> photoInfo(std::size_t index) const override {
    PhotoInfo info = PhotoInfo::ofPath(m_photos[index].path);
    info.size = m_photos[index].size;
    info.birthDate = knownTime(instantFromUnixTime(m_photos[index].date));
    return info;
  }
  std::optional<Bytes> imageDataForPath(const std::string&, Bytes) const override {
    return std::nullopt;
  }

private:
  const std::vector<KnownPhoto> m_photos;
  std::deque<ImageItem> m_items;
};

}  // namespace snaplift::test
