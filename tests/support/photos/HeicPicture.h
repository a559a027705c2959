#pragma once

#include <QByteArray>
#include <QImage>

namespace snaplift::test {

// `stored` as a HEIC file of `bits` for each colour, which says that it is to be turned as the Exif
// orientation would, with a preview whose longer side has `preview` pixels. Empty in a build
// without libheif.
QByteArray heicOf(const QImage& stored, int orientation, int bits, int preview);

}  // namespace snaplift::test
