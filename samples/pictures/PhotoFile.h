#pragma once

#include <string>

#include "foundation/Time.h"
#include "pictures/Image.h"

namespace snaplift::samples {

// What a camera writes beside the pixels.
struct CameraData {
  int orientation = 1;  // 1 to 8, as EXIF numbers them
  Instant taken = {};
};

// The JPEG file of a camera: the pixels turned as the orientation says, the date, and an embedded
// preview of at most 160 by 120. Throws std::runtime_error where an encoder fails.
std::string jpegPhoto(const Image& upright, const CameraData& camera);

// The PNG file of a screen picture, upright, without further data. Throws std::runtime_error.
std::string pngPicture(const Image& image);

}  // namespace snaplift::samples
