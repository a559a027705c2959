#include "toolkit/Thumbnail.h"

#include <QBuffer>
#include <QIODevice>
#include <QImageReader>
#include <QLoggingCategory>
#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <optional>

#include <libexif/exif-data.h>

#include "toolkit/PictureHeader.h"

namespace snaplift {
namespace {

using Clock = std::chrono::steady_clock;

// The bytes of a photo as a device that dries up: decoders ask for a few thousand bytes at a time,
// so a picture that takes for ever is cut off at the deadline as if its file ended there.
class BoundedDevice final : public QIODevice {
public:
  BoundedDevice(ByteView bytes, Clock::time_point deadline, const std::atomic<bool>& stop)
      : m_bytes(bytes), m_deadline(deadline), m_stop(stop) {
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
  }

  qint64 size() const override { return static_cast<qint64>(m_bytes.size()); }
  bool isExhausted() const { return m_exhausted; }

protected:
  qint64 readData(char* data, qint64 maxSize) override {
    m_exhausted = m_exhausted || m_stop || Clock::now() > m_deadline;
    if (m_exhausted) {
      return -1;
    }
    const qint64 count = std::clamp<qint64>(size() - pos(), 0, maxSize);
    std::memcpy(data, m_bytes.data() + pos(), static_cast<std::size_t>(count));
    return count;
  }
  qint64 writeData(const char*, qint64) override { return -1; }

private:
  ByteView m_bytes;
  Clock::time_point m_deadline;
  const std::atomic<bool>& m_stop;
  bool m_exhausted = false;
};

// Qt's own limit counts the bytes of the picture in memory, not its pixels, and would refuse camera
// pictures that we can afford; DecodeLimits stands in its place. Its decoders log a line and more
// for each damaged photo; the grid shows the damage.
void prepareQt() {
  [[maybe_unused]] static const bool prepared = [] {
    QImageReader::setAllocationLimit(0);
    QLoggingCategory::setFilterRules("qt.gui.imageio*=false");
    return true;
  }();
}

bool isWithin(const DecodeLimits& limits, const PictureHeader& header) {
  return std::int64_t{header.size.width()} * header.size.height() <= limits.pixels &&
         header.decodedBytes <= limits.bytes;
}

QSize fitted(QSize size, int pixels) {
  if (std::max(size.width(), size.height()) <= pixels) {
    return size;
  }
  // A panorama's short side would vanish.
  return size.scaled(pixels, pixels, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

// The two formats that a raster painter copies without converting.
QImage paintable(QImage image) {
  return std::move(image).convertToFormat(
      image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

struct ReadPicture {
  QImage picture;
  QSize uprightSize;
};

ReadPicture readPicture(const PictureHeader& header, QIODevice& device, int pixels) {
  prepareQt();
  QImageReader reader(&device, header.format);
  reader.setAutoDetectImageFormat(false);
  reader.setAutoTransform(true);
  const QSize target = fitted(header.size, pixels);
  if (target != header.size) {
    reader.setScaledSize(target);
  }
  const bool lies = reader.transformation() & QImageIOHandler::TransformationRotate90;
  return {paintable(reader.read()), lies ? header.size.transposed() : header.size};
}

// A picture of one scan is read from memory at once, which takes nine tenths of the time: at the
// end of each piece that a device gives, the decoder goes byte by byte. Nothing can stop it
// meanwhile; a picture of all pixels that may be takes it half a second.
ReadPicture readOneScan(const PictureHeader& header, ByteView bytes, int pixels) {
  QByteArray data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                            static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&data);
  buffer.open(QIODevice::ReadOnly);
  return readPicture(header, buffer, pixels);
}

ReadPicture readInTime(const PictureHeader& header, ByteView bytes, int pixels,
                       const DecodeLimits& limits, const std::atomic<bool>& stop) {
  BoundedDevice device(bytes, Clock::now() + limits.time, stop);
  ReadPicture read = readPicture(header, device, pixels);
  if (device.isExhausted()) {
    read.picture = {};
  }
  return read;
}

struct ExifDataUnref {
  void operator()(ExifData* data) const { exif_data_unref(data); }
};

// The bytes of the preview, which live as long as `exif`.
ByteView previewBytes(const ExifData& exif) {
  return exif.data == nullptr ? ByteView{} : ByteView{exif.data, exif.size};
}

bool haveSameProportions(QSize a, QSize b) {
  constexpr double tolerance = 0.02;  // the short side of a preview is rounded to whole pixels
  const double ratio = (double{1} * a.width() * b.height()) / (double{1} * b.width() * a.height());
  return std::abs(ratio - 1) <= tolerance;
}

// Decodes the preview and turns it as the photo itself is to be turned: what the preview says of
// its own orientation is often missing.
QImage uprightPreview(ByteView preview, const PictureHeader& photo, ByteView bytes) {
  prepareQt();
  static const std::atomic<bool> never = false;
  BoundedDevice photoDevice(bytes, Clock::time_point::max(), never);
  QImageReader photoReader(&photoDevice, photo.format);
  const QImageIOHandler::Transformations turn = photoReader.transformation();

  const QImage picture = QImage::fromData(preview.data(), static_cast<int>(preview.size()), "jpeg")
                             .mirrored(turn & QImageIOHandler::TransformationMirror,
                                       turn & QImageIOHandler::TransformationFlip);
  return turn & QImageIOHandler::TransformationRotate90
             ? picture.transformed(QTransform().rotate(90))
             : picture;
}

}  // namespace

int thumbnailStep(int pixels) {
  constexpr std::array steps{96, 128, 192, 256, 384, 512, 768, 1024, 1536};
  const auto* step = std::lower_bound(steps.begin(), steps.end(), pixels);
  return step == steps.end() ? 2048 : *step;
}

Thumbnail decodeThumbnail(ByteView bytes, int pixels, const DecodeLimits& limits,
                          const std::atomic<bool>& stop) {
  Thumbnail result;
  result.pixels = pixels;
  result.byteCount = static_cast<std::int64_t>(bytes.size());
  result.state = Thumbnail::State::Undecodable;
  const std::optional<PictureHeader> header = pictureHeader(bytes);
  if (!header) {
    return result;
  }
  result.photoSize = header->size;
  if (!isWithin(limits, *header)) {
    return result;
  }
  ReadPicture read = header->isOneScan ? readOneScan(*header, bytes, pixels)
                                       : readInTime(*header, bytes, pixels, limits, stop);
  result.photoSize = read.uprightSize;
  if (!read.picture.isNull()) {
    result.picture = std::move(read.picture);
    result.state = Thumbnail::State::Ready;
  }
  return result;
}

Thumbnail embeddedPreview(ByteView bytes, int pixels, const DecodeLimits& limits) {
  Thumbnail result;
  result.byteCount = static_cast<std::int64_t>(bytes.size());
  const std::optional<PictureHeader> header = pictureHeader(bytes);
  if (!header || !isWithin(limits, *header)) {
    result.state = Thumbnail::State::Undecodable;
    return result;
  }
  if (header->format != "jpeg") {
    return result;
  }
  const std::unique_ptr<ExifData, ExifDataUnref> exif(exif_data_new_from_data(
      bytes.data(), static_cast<unsigned>(std::min<std::size_t>(bytes.size(), UINT32_MAX))));
  if (!exif) {
    return result;
  }
  const ByteView preview = previewBytes(*exif);
  const std::optional<PictureHeader> previewHeader = pictureHeader(preview);
  constexpr int maxPreviewSide = 1'024;
  if (!previewHeader || previewHeader->format != "jpeg" ||
      std::max(previewHeader->size.width(), previewHeader->size.height()) > maxPreviewSide ||
      std::max(previewHeader->size.width(), previewHeader->size.height()) < pixels ||
      !haveSameProportions(previewHeader->size, header->size)) {
    return result;
  }
  QImage picture = uprightPreview(preview, *header, bytes);
  if (!picture.isNull()) {
    result.picture = paintable(std::move(picture));
    const bool turned = (result.picture.width() > result.picture.height()) !=
                        (previewHeader->size.width() > previewHeader->size.height());
    result.photoSize = turned ? header->size.transposed() : header->size;
    result.pixels = std::max(result.picture.width(), result.picture.height());
    result.state = Thumbnail::State::Preview;
  }
  return result;
}

}  // namespace snaplift
