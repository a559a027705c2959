#pragma once

#include <string>

#include "pictures/Image.h"

namespace snaplift::samples {

// How a picture is put into a HEIC file.
struct HeicOptions {
  int orientation = 1;  // to be turned so as it is shown; 1 to 8, as EXIF numbers them
  int bits = 8;         // of each colour
  int preview = 320;    // pixels of the embedded preview's longer side
};

// The HEIC file of those pixels, which a viewer turns by the orientation. Empty in a build without
// libheif, whose encoder it is. Throws std::runtime_error where that fails.
std::string heicPhoto(const Image& stored, const HeicOptions& options = {});

}  // namespace snaplift::samples
