#pragma once

#include "picturedecoder/PictureWriter.h"

namespace snaplift {

// PNG files, read by libpng as they would come over a wire: what is there is shown, however early
// the file ends. Chunks other than the pixels, their palette, transparency and colour profile are
// skipped unread, so no length in them costs anything. Of an animation, the picture that every
// reader shows.
PictureAnswer decodePng(ByteView bytes, const PictureTarget& target);

// The size that the file's header states; none where it is no header, or of a size that no picture
// has.
PictureSize pngSize(ByteView bytes);

}  // namespace snaplift
