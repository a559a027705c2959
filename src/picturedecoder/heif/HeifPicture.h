#pragma once

#include "picturedecoder/PictureWriter.h"

namespace snaplift {

// As decodePicture(), and HEIF files (HEIC among them) too, read by libheif, which also turns and
// mirrors as the file says and brings ten bits down to eight.
//
// In a library and a program of its own: libheif's decoders fill tables when they are loaded, which
// takes twice as long as all else that a decoder does before its first picture.
PictureAnswer decodePictureOrHeif(const PictureRequest& request, ByteView picture,
                                  std::span<std::uint8_t> pixels);

}  // namespace snaplift
