#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Time.h"
#include "pictures/Image.h"

namespace snaplift::samples {

// What a camera writes beside the pixels.
struct CameraData {
  int orientation = 1;  // 1 to 8, as EXIF numbers them
  Instant taken = {};
  std::string maker = {}, model = {};
  struct Exposure {
    unsigned perSecond, apertureTenths, iso;  // 125, 28, 100: 1/125 s, f/2.8, ISO 100
  };
  std::optional<Exposure> exposure = {};
  struct Position {
    double latitude, longitude;  // in degrees, to the north and to the east
  };
  std::optional<Position> position = {};
};

// The JPEG file of a camera: the pixels turned as the orientation says, the date, and an embedded
// preview whose longer side is 160. Ends the program where the encoder fails.
std::string jpegPhoto(const Image& upright, const CameraData& camera);

// A JPEG file of rows of pixels without gaps, of three channels (red first) or four (inks, each as
// 255 less its amount, as Adobe's programs write them). Ends the program where the encoder fails.
std::string jpegOfPixels(const std::uint8_t* pixels, int width, int height, int channels,
                         int quality);

// `jpeg` with an EXIF segment in front; without a preview where that is empty. Neither is looked
// into. Throws std::runtime_error for more than a segment holds.
std::string withExif(std::string_view jpeg, const CameraData& camera, std::string_view preview);

// The JPEG file of a picture and nothing else: a thumbnail, a frame of a film.
std::string plainJpeg(const Image& image);

// The PNG file of a screen picture, upright, without further data. Throws std::runtime_error.
std::string pngPicture(const Image& image);

}  // namespace snaplift::samples
