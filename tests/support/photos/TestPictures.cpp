#include "support/photos/TestPictures.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <QTransform>
#include <array>

#include "pictures/PhotoFile.h"

namespace snaplift::test {

QImage quadrants(QSize size) {
  QImage picture(size, QImage::Format_RGB32);
  picture.fill(Qt::white);
  QPainter painter(&picture);
  const int x = size.width() / 2;
  const int y = size.height() / 2;
  painter.fillRect(0, 0, x, y, Qt::red);
  painter.fillRect(x, 0, size.width() - x, y, Qt::green);
  painter.fillRect(0, y, x, size.height() - y, Qt::blue);
  return picture;
}

QByteArray encoded(const QImage& picture, const char* format, int quality) {
  QByteArray data;
  QBuffer buffer(&data);
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, format, quality);
  return data;
}

QByteArray progressiveOf(const QImage& picture) {
  QByteArray data;
  QBuffer buffer(&data);
  QImageWriter writer(&buffer, "jpeg");
  writer.setProgressiveScanWrite(true);
  return writer.write(picture) ? data : QByteArray();
}

QByteArray withExif(const QByteArray& jpeg, int orientation, const QByteArray& preview) {
  return QByteArray::fromStdString(
      samples::withExif(jpeg.toStdString(), {.orientation = orientation}, preview.toStdString()));
}

QImage storedAs(const QImage& upright, int orientation) {
  static constexpr std::array angles{0, 180, 180, 0, -90, -90, 90, 90};
  const QImage turned = upright.transformed(
      QTransform().rotate(angles.at(static_cast<std::size_t>(orientation - 1))));
  const bool isMirrored =
      orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
  return isMirrored ? turned.mirrored(false, true) : turned;
}

Bytes bytesFrom(const QByteArray& data) {
  return Bytes::copyOf(viewOf(data));
}

ByteView viewOf(const QByteArray& data) {
  return {reinterpret_cast<const std::uint8_t*>(data.constData()),
          static_cast<std::size_t>(data.size())};
}

}  // namespace snaplift::test
