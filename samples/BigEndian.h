#pragma once

#include <cstdint>
#include <string>

namespace snaplift::samples {

// Integers of manifests and binary property lists: `width` bytes, the highest first.
inline void appendInteger(std::string& out, std::uint64_t value, unsigned width) {
  for (unsigned shift = 8 * width; shift > 0; shift -= 8) {
    out.push_back(static_cast<char>(value >> (shift - 8)));
  }
}

}  // namespace snaplift::samples
