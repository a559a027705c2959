#pragma once

#include <cstdint>

#include "pictures/Image.h"

namespace snaplift::samples {

// A photograph of mountains, a lake, hills, a forest, dunes or the sea, at some time of the day and
// of the year. One seed always paints the same view, in every size, and no two seeds the same.
Image paintLandscape(std::uint32_t seed, int width, int height);

}  // namespace snaplift::samples
