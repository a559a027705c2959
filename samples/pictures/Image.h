#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace snaplift::samples {

// A finished picture: rows from the top, three bytes a pixel, red first, sRGB.
struct Image {
  int width = 0, height = 0;
  std::vector<std::uint8_t> bytes;

  Image(int w, int h)
      : width(w), height(h), bytes(3 * static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}

  std::uint8_t* pixel(int x, int y) { return bytes.data() + 3 * index(x, y); }
  const std::uint8_t* pixel(int x, int y) const { return bytes.data() + 3 * index(x, y); }

private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
  }
};

}  // namespace snaplift::samples
