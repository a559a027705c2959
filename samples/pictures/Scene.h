#pragma once

#include <cstdint>

#include "pictures/Image.h"

namespace snaplift::samples {

// The pictures that the samples are made of. One seed always paints the same picture, and no two
// seeds the same.

// A photograph of mountains, fjords, hills, dunes or canyons, at some time of the day.
Image paintLandscape(std::uint32_t seed, int width, int height);

// A screen picture with charts on it, portrait.
Image paintCharts(std::uint32_t seed, int width, int height);

}  // namespace snaplift::samples
