#include "support/photos/HeicPicture.h"

#include <algorithm>

#include "pictures/HeicPhoto.h"

namespace snaplift::test {

QByteArray heicOf(const QImage& stored, int orientation, int bits, int preview) {
  const QImage pixels = stored.convertToFormat(QImage::Format_RGB888);
  samples::Image image(pixels.width(), pixels.height());
  for (int y = 0; y < image.height; ++y) {
    std::copy_n(pixels.constScanLine(y), 3 * image.width, image.pixel(0, y));
  }
  return QByteArray::fromStdString(
      samples::heicPhoto(image, {.orientation = orientation, .bits = bits, .preview = preview}));
}

}  // namespace snaplift::test
