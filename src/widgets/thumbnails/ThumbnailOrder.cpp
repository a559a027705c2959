#include "widgets/thumbnails/ThumbnailOrder.h"

#include <algorithm>

namespace snaplift {

std::vector<int> thumbnailOrder(const ThumbnailSight& sight) {
  const int first = std::max(sight.visible.first, 0);
  const int last = std::min(sight.visible.last, sight.itemCount - 1);
  std::vector<int> order;
  const auto add = [&](int index) {
    const bool wanted =
        index >= 0 && index < sight.itemCount && static_cast<int>(order.size()) < sight.capacity;
    if (wanted) {
      order.push_back(index);
    }
  };
  for (int index = first; index <= last; ++index) {
    add(index);
  }
  const int screen = std::max(last - first + 1, 0);
  const int below = sight.scrollsBackwards ? screen / 2 : screen;
  const int above = sight.scrollsBackwards ? screen : screen / 2;
  const auto addBelow = [&] {
    for (int i = 1; i <= below; ++i) {
      add(last + i);
    }
  };
  const auto addAbove = [&] {
    for (int i = 1; i <= above; ++i) {
      add(first - i);
    }
  };
  if (sight.scrollsBackwards) {
    addAbove();
    addBelow();
  } else {
    addBelow();
    addAbove();
  }
  return order;
}

}  // namespace snaplift
