#pragma once

#include <QByteArray>
#include <QSize>
#include <cstdint>
#include <optional>

#include "foundation/Bytes.h"

namespace snaplift {

// What the first bytes of a picture say of it, read by us before any decoder sees the picture: the
// photos are JPEG or PNG files of whoever made the backup, and what a decode will cost is known
// only from here.
struct PictureHeader {
  QByteArray format;          // "jpeg" or "png", the names that QImageReader uses
  QSize size;                 // in pixels, as stored (before any turning)
  std::int64_t decodedBytes;  // what decoding holds in memory at once, at most; the result apart
  // A JPEG file that is decoded row by row, in one scan: its size in pixels bounds the time. Any
  // other may make the decoder go over the picture as often as the file likes.
  bool isOneScan = false;
};

// Nothing for bytes that are neither format, and for a header that is cut off or without pixels.
std::optional<PictureHeader> pictureHeader(ByteView bytes);

}  // namespace snaplift
