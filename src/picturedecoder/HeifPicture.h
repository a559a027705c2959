#pragma once

#include "picturedecoder/PictureWriter.h"
#include "picturedecoder/protocol/PictureFacts.h"

namespace snaplift {

// HEIF files (HEIC among them), read by libheif, which also turns and mirrors as the file says and
// brings ten bits down to eight. In a build without libheif no file is one.

bool isHeif(ByteView bytes);

PictureAnswer decodeHeif(ByteView bytes, const PictureTarget& target);
// The small picture that the file brings along, if it would do for a cell of `pixels` (see
// isFitPreview).
PictureAnswer decodeHeifPreview(ByteView bytes, std::uint32_t pixels, const PictureTarget& target);

// What the camera wrote beside the picture, into `facts`, and the picture's size, upright; none
// where there is no picture.
PictureSize readHeifFacts(ByteView bytes, PictureFacts& facts);

}  // namespace snaplift
