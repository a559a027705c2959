#include "pictures/Image.h"

#include <algorithm>

namespace snaplift::samples {

Image storedWithOrientation(const Image& upright, int orientation) {
  const bool transposed = orientation >= 5;
  // Where the stored rows and columns run against the upright picture's.
  const bool fromRight =
      orientation == 2 || orientation == 3 || orientation == 6 || orientation == 7;
  const bool fromBottom =
      orientation == 3 || orientation == 4 || orientation == 7 || orientation == 8;
  Image stored(transposed ? upright.height : upright.width,
               transposed ? upright.width : upright.height);
  for (int row = 0; row < stored.height; ++row) {
    for (int column = 0; column < stored.width; ++column) {
      int x = transposed ? row : column;
      int y = transposed ? column : row;
      x = fromRight ? upright.width - 1 - x : x;
      y = fromBottom ? upright.height - 1 - y : y;
      std::copy_n(upright.pixel(x, y), 3, stored.pixel(column, row));
    }
  }
  return stored;
}

Image scaledDown(const Image& image, int width, int height) {
  Image small(width, height);
  for (int y = 0; y < height; ++y) {
    const int top = y * image.height / height;
    const int bottom = std::max(top + 1, (y + 1) * image.height / height);
    for (int x = 0; x < width; ++x) {
      const int left = x * image.width / width;
      const int right = std::max(left + 1, (x + 1) * image.width / width);
      unsigned sums[3] = {};
      for (int sy = top; sy < bottom; ++sy) {
        for (int sx = left; sx < right; ++sx) {
          for (int channel = 0; channel < 3; ++channel) {
            sums[channel] += image.pixel(sx, sy)[channel];
          }
        }
      }
      const auto count = static_cast<unsigned>((bottom - top) * (right - left));
      std::transform(sums, sums + 3, small.pixel(x, y), [count](unsigned sum) {
        return static_cast<std::uint8_t>((sum + count / 2) / count);
      });
    }
  }
  return small;
}

}  // namespace snaplift::samples
