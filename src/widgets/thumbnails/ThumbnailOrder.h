#pragma once

#include <vector>

#include "widgets/thumbnails/IndexRange.h"

namespace snaplift {

// What a view looks at while thumbnails are loaded for it.
struct ThumbnailSight {
  IndexRange visible;
  int itemCount = 0;
  bool scrollsBackwards = false;  // the last scroll went towards the first photo
  int capacity = 0;               // how many thumbnails are worth having at once
};

// The order in which photos are worked on: what is visible from top to bottom, then the next screen
// ahead of the scroll, then half a screen behind it, nearest first; at most `capacity` in all, and
// nothing else. Whatever is not in the answer is not worked on.
std::vector<int> thumbnailOrder(const ThumbnailSight& sight);

}  // namespace snaplift
