#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "photos/PhotoKeys.h"

namespace snaplift {

// How somebody wants to look at photos.
struct PhotoWishes {
  PhotoOrder order = PhotoOrder::Backup;
  bool isDescending = false;
  bool isByMonth = false;      // months in that direction, and in each the order
  bool onlyOriginals = false;  // as the camera took them: nothing edited, derived or of a cloud
  std::string text = {};       // what PhotoQuery finds

  bool operator==(const PhotoWishes&) const = default;
};

// Which photos of a list are shown, in which order and under which months. The list is the
// backup's; a place is the number of a photo among those that are shown. Nothing reads a photo: all
// is taken from PhotoInfo, by PhotoKeys. Where nothing but the list itself is wished for, nothing
// is computed and nothing kept; a change of the text costs one walk over the list.
//
// The photos are not owned and outlive their stay here. For one thread.
class PhotoArrangement {
public:
  struct Month {
    std::optional<Instant> date;  // that of a photo of the month; none for photos without a month
    int count = 0;
  };

  // Others from now on, as wished.
  void setPhotos(std::vector<ImageItem*> photos);

  const PhotoWishes& wishes() const { return m_wishes; }
  // The answer: for each place from before the place where its photo is now, -1 where it is gone.
  std::vector<int> setWishes(const PhotoWishes& wishes);

  // A photo's number in the list, and its place; -1 for one that is not shown.
  int numberAt(int place) const {
    return static_cast<int>(m_shown[static_cast<std::size_t>(place)]);
  }
  int placeOf(int number) const { return m_places[static_cast<std::size_t>(number)]; }

  // Those that are shown.
  int count() const { return static_cast<int>(m_shown.size()); }
  // `place` is one.
  ImageItem& photoAt(int place) const {
    return *m_photos[m_shown[static_cast<std::size_t>(place)]];
  }
  // In the order of their places; empty unless they are wished for.
  const std::vector<Month>& months() const { return m_months; }

  // Shown or not.
  int countOfAll() const { return static_cast<int>(m_photos.size()); }
  bool showsAll() const { return m_shown.size() == m_photos.size(); }
  // How many are not shown because only originals are, whatever the text.
  int countOfHiddenKinds() const { return m_hiddenKinds; }

private:
  PhotoKeys& keys();
  void sort();
  void choose();
  void findMonths();
  void numberPlaces();

  std::vector<ImageItem*> m_photos;
  PhotoWishes m_wishes;
  std::unique_ptr<PhotoKeys> m_keys;    // once they are needed
  std::vector<std::uint32_t> m_sorted;  // all photos
  std::vector<std::uint32_t> m_shown;   // in the same order
  std::vector<int> m_places;            // of all photos
  std::vector<Month> m_months;
  int m_hiddenKinds = 0;
};

}  // namespace snaplift
