#pragma once

#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "backups/ImageItem.h"

namespace snaplift {

// Which items of a list are live photos: a photo and a film of one folder and one name, but for
// the extension. The film belongs to the first such photo, and of several films the first is the
// photo's; every other item stands for itself. Made in time that grows with the list, and never
// changed. The items are not owned.
class LivePhotos {
public:
  LivePhotos() = default;
  explicit LivePhotos(const std::vector<std::unique_ptr<ImageItem>>& items);

  // Null for what is no live photo.
  ImageItem* filmOf(const ImageItem& photo) const;
  // Whether `film` is the film of one.
  bool isPart(const ImageItem& film) const { return m_parts.contains(&film); }
  // The photos with the film of each behind it, for who copies them as they belong together. A film
  // that is in the list itself stays where it is.
  std::vector<ImageItem*> withFilms(const std::vector<ImageItem*>& photos) const;

private:
  std::unordered_map<const ImageItem*, ImageItem*> m_films;
  std::unordered_set<const ImageItem*> m_parts;
};

}  // namespace snaplift
