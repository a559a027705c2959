#include "backups/LivePhotos.h"

#include <string_view>

#include "decoders/PhotoInfo.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

// "…/100APPLE/IMG_0001" of "…/100APPLE/IMG_0001.MOV".
std::string_view withoutExtension(std::string_view path) {
  return path.substr(0, path.size() - pathExtension(path).size());
}

}  // namespace

LivePhotos::LivePhotos(const std::vector<std::unique_ptr<ImageItem>>& items) {
  std::unordered_map<std::string_view, ImageItem*> films;
  for (const auto& item : items) {
    if (mediaOfPath(item->path()) == PhotoMedia::Film) {
      films.try_emplace(withoutExtension(item->path()), item.get());
    }
  }
  if (films.empty()) {
    return;
  }
  for (const auto& item : items) {
    const auto film = films.find(withoutExtension(item->path()));
    if (film != films.end() && mediaOfPath(item->path()) == PhotoMedia::Photo) {
      m_films.emplace(item.get(), film->second);
      m_parts.insert(film->second);
      films.erase(film);
    }
  }
}

ImageItem* LivePhotos::filmOf(const ImageItem& photo) const {
  const auto found = m_films.find(&photo);
  return found == m_films.end() ? nullptr : found->second;
}

std::vector<ImageItem*> LivePhotos::withFilms(const std::vector<ImageItem*>& photos) const {
  if (m_films.empty()) {
    return photos;
  }
  const std::unordered_set<const ImageItem*> listed(photos.begin(), photos.end());
  std::vector<ImageItem*> all;
  all.reserve(photos.size());
  for (ImageItem* photo : photos) {
    all.push_back(photo);
    ImageItem* film = filmOf(*photo);
    if (film != nullptr && !listed.contains(film)) {
      all.push_back(film);
    }
  }
  return all;
}

}  // namespace snaplift
