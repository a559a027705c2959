#pragma once

#include <cstddef>
#include <string>

namespace snaplift::samples {

// The number in so many bytes, its high ones first.
inline std::string bigEndian(std::size_t value, int width) {
  std::string bytes;
  while (width > 0) {
    bytes += static_cast<char>(value >> 8 * --width);
  }
  return bytes;
}

}  // namespace snaplift::samples
