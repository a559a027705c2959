#pragma once

#include "picturedecoder/PictureWriter.h"
#include "picturedecoder/protocol/PictureFacts.h"

namespace snaplift {

// Decodes what `request` asks for from a JPEG or PNG file into `pixels`: a picture, or
// PictureFacts, for which no pixel is looked at. The format is told by the bytes alone; what may be
// HEIF is left to heif/, by its own outcome. Throws std::bad_alloc where memory is refused.
PictureAnswer decodePicture(const PictureRequest& request, ByteView picture,
                            std::span<std::uint8_t> pixels);

// Where the pixels of a request go.
PictureTarget targetOf(const PictureRequest& request, std::span<std::uint8_t> pixels);

// Puts facts into `space`; no picture where it has no size.
PictureAnswer answerOfFacts(const PictureFacts& facts, PictureSize size,
                            std::span<std::uint8_t> space);

// Whether a preview may stand for its photo in a cell of `pixels`: large enough for it and no
// larger than a preview is, in the photo's proportions. Cameras and editors embed others, with bars
// or of another crop.
bool isFitPreview(PictureSize preview, PictureSize photo, std::uint32_t pixels);

}  // namespace snaplift
