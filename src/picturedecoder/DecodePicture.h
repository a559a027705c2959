#pragma once

#include "picturedecoder/PictureWriter.h"

namespace snaplift {

// Decodes what `request` asks for from a file of any format that is known, into `pixels`: a
// picture, or PictureFacts, for which no pixel is looked at. The format is told by the bytes alone.
// Throws std::bad_alloc where memory is refused.
PictureAnswer decodePicture(const PictureRequest& request, ByteView picture,
                            std::span<std::uint8_t> pixels);

// Whether a preview may stand for its photo in a cell of `pixels`: large enough for it and no
// larger than a preview is, in the photo's proportions. Cameras and editors embed others, with bars
// or of another crop.
bool isFitPreview(PictureSize preview, PictureSize photo, std::uint32_t pixels);

}  // namespace snaplift
