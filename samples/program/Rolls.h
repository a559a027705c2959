#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "program/Album.h"

namespace snaplift::samples {

// The camera of a generation of handsets.
struct Camera {
  int width, height;
};

// A roll of photos that one device took over the years, in the order in which it took them.
struct Roll {
  std::uint32_t firstSeed;
  int photos;
  Camera camera;
  std::int64_t firstDay;  // since 1970
  int screens = 0;        // pictures of the screen besides
  int films = 0;          // of an old handset
};

// A shot and its path on the device.
struct PlacedShot {
  std::string path;
  Shot shot;
};

Instant noonOf(std::int64_t day);

// What a handset of system versions 1 to 9 has of the roll; `divisor` makes pictures smaller.
std::vector<PlacedShot> oldRoll(const Roll& roll, int divisor);

// What a newer one has: HEIC photos, live photos, films and edited photos by turns, one photo of
// the cloud library, and the small pictures that the device makes of each.
std::vector<PlacedShot> newRoll(const Roll& roll, int divisor);

}  // namespace snaplift::samples
