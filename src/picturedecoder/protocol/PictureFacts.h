#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace snaplift {

// What a photo's file says of how it was taken, as a picture decoder hands it out: numbers, and
// texts of a fixed size, so that any bytes make one. Nothing of it is to be believed before
// plausible() has looked at it, on either side of the socket. A 0, and an empty text, stand for
// what the file does not say.
struct PictureFacts {
  static constexpr std::size_t textSize = 64;
  using Text = std::array<char, textSize>;  // UTF-8 at best; ends at its first NUL
  struct Clock {
    std::int32_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  };

  Text maker{}, model{};
  Clock taken = {};       // by the camera's own clock, wherever that was
  double exposure = 0;    // in seconds
  double aperture = 0;    // the f-number
  std::uint32_t iso = 0;  // how sensitive the film would have been
  std::uint32_t hasPosition = 0;
  double latitude = 0, longitude = 0;  // in degrees, to the north and to the east
};

// `facts` without what cannot be: a 31st of June, an exposure of no length, a place that is not on
// the earth, a text without an end.
PictureFacts plausible(PictureFacts facts);

}  // namespace snaplift
