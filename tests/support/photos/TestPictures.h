#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <optional>

#include "foundation/Bytes.h"

namespace snaplift::test {

// Pictures that can be recognised by a few of their pixels, encoded as files.

// Four quadrants: red, green (top), blue, white (bottom), as a reader sees an upright picture.
QImage quadrants(QSize size);

// `picture` as the bytes of a file; `format` is "jpeg" or "png".
QByteArray encoded(const QImage& picture, const char* format = "jpeg", int quality = 95);

// `picture` as a JPEG file of several scans, each finer than the one before.
QByteArray progressiveOf(const QImage& picture);

// A JPEG file with an Exif segment: the orientation (1 to 8), and the preview (a JPEG file, or
// nothing).
QByteArray withExif(const QByteArray& jpeg, int orientation, const QByteArray& preview = {});

// What a camera held as `orientation` says stores, so that a viewer that follows it sees `upright`.
QImage storedAs(const QImage& upright, int orientation);

Bytes bytesFrom(const QByteArray& data);
ByteView viewOf(const QByteArray& data);

}  // namespace snaplift::test
