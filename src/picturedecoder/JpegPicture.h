#pragma once

#include <optional>

#include "picturedecoder/Exif.h"
#include "picturedecoder/PictureWriter.h"

namespace snaplift {

// JPEG files, read by libjpeg-turbo, which scales while it reads. A file that ends early or whose
// middle is wrong gives what can be seen of it. Bytes that stand between two segments are skipped.

// What the segments before the first scan say.
struct JpegFacts {
  PictureSize size;  // as stored
  Exif exif;
};

// Nothing where the bytes have no header of a frame. The pixels are not looked at.
std::optional<JpegFacts> jpegFacts(ByteView bytes);

// `orientation` 0: what the file itself says.
PictureAnswer decodeJpeg(ByteView bytes, const PictureTarget& target, int orientation = 0);

}  // namespace snaplift
