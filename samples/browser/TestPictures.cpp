#include "samples/browser/TestPictures.h"

#include <QBuffer>
#include <QPainter>
#include <QTransform>

namespace snaplift::test {
namespace {

QByteArray bigEndian16(int value) {
  return QByteArray(1, static_cast<char>(value >> 8)) + QByteArray(1, static_cast<char>(value));
}

QByteArray bigEndian32(qsizetype value) {
  return bigEndian16(static_cast<int>(value >> 16)) + bigEndian16(static_cast<int>(value & 0xFFFF));
}

// One entry of a TIFF directory with a single value; a short stands left in its four bytes.
QByteArray entry(int tag, int type, qsizetype value) {
  constexpr int typeShort = 3;
  return bigEndian16(tag) + bigEndian16(type) + bigEndian32(1) +
         (type == typeShort ? bigEndian16(static_cast<int>(value)) + bigEndian16(0)
                            : bigEndian32(value));
}

}  // namespace

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

QByteArray encoded(const QImage& picture, const char* format) {
  QByteArray data;
  QBuffer buffer(&data);
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, format, 95);
  return data;
}

QByteArray withExif(const QByteArray& jpeg, int orientation, const QByteArray& preview) {
  constexpr int typeShort = 3;
  constexpr int typeLong = 4;
  constexpr int secondDirectory = 8 + 2 + 12 + 4;
  constexpr int previewAt = secondDirectory + 2 + 3 * 12 + 4;
  QByteArray tiff = "MM" + bigEndian16(42) + bigEndian32(8);
  tiff += bigEndian16(1) + entry(0x0112, typeShort, orientation) +
          bigEndian32(preview.isEmpty() ? 0 : secondDirectory);
  if (!preview.isEmpty()) {
    tiff += bigEndian16(3) + entry(0x0103, typeShort, 6) + entry(0x0201, typeLong, previewAt) +
            entry(0x0202, typeLong, preview.size()) + bigEndian32(0) + preview;
  }
  const QByteArray body = QByteArray("Exif\0\0", 6) + tiff;
  return jpeg.left(2) + "\xFF\xE1" + bigEndian16(static_cast<int>(body.size()) + 2) + body +
         jpeg.mid(2);
}

QImage storedAs(const QImage& upright, int orientation) {
  const QTransform quarter = QTransform().rotate(90);
  const QTransform back = QTransform().rotate(-90);
  switch (orientation) {
    case 2:
      return upright.mirrored(true, false);
    case 3:
      return upright.mirrored(true, true);
    case 4:
      return upright.mirrored(false, true);
    case 5:
      return upright.transformed(back).mirrored(false, true);
    case 6:
      return upright.transformed(back);
    case 7:
      return upright.transformed(quarter).mirrored(false, true);
    case 8:
      return upright.transformed(quarter);
    default:
      return upright;
  }
}

Bytes bytesFrom(const QByteArray& data) {
  return Bytes::copyOf(viewOf(data));
}

ByteView viewOf(const QByteArray& data) {
  return {reinterpret_cast<const std::uint8_t*>(data.constData()),
          static_cast<std::size_t>(data.size())};
}

}  // namespace snaplift::test
