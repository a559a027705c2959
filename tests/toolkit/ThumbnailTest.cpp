#include <QBuffer>
#include <QImageWriter>

#include <gtest/gtest.h>

#include "samples/browser/TestPictures.h"
#include "toolkit/PictureHeader.h"
#include "toolkit/Thumbnail.h"
#include "toolkit/ThumbnailCache.h"

namespace snaplift {
namespace {

using State = Thumbnail::State;
using test::encoded;
using test::quadrants;
using test::storedAs;
using test::viewOf;
using test::withExif;

const std::atomic<bool> goOn = false;

Thumbnail decode(const QByteArray& data, int pixels = 96, const DecodeLimits& limits = {}) {
  return decodeThumbnail(viewOf(data), pixels, limits, goOn);
}

QByteArray progressiveOf(const QImage& picture) {
  QByteArray data;
  QBuffer buffer(&data);
  QImageWriter writer(&buffer, "jpeg");
  writer.setProgressiveScanWrite(true);
  return writer.write(picture) ? data : QByteArray();
}

bool isNear(QRgb color, QColor expected) {
  constexpr int tolerance = 60;  // what JPEG leaves of a pure colour
  return std::abs(qRed(color) - expected.red()) < tolerance &&
         std::abs(qGreen(color) - expected.green()) < tolerance &&
         std::abs(qBlue(color) - expected.blue()) < tolerance;
}

// Red, green above blue, white: the picture stands upright.
bool isUpright(const QImage& picture) {
  const int x = picture.width() / 4;
  const int y = picture.height() / 4;
  return isNear(picture.pixel(x, y), Qt::red) && isNear(picture.pixel(3 * x, y), Qt::green) &&
         isNear(picture.pixel(x, 3 * y), Qt::blue) &&
         isNear(picture.pixel(3 * x, 3 * y), Qt::white);
}

TEST(Thumbnail, isUprightInEveryOrientationDecodedOrEmbedded) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const QByteArray preview = encoded(storedAs(quadrants({160, 120}), orientation));
    const QByteArray photo =
        withExif(encoded(storedAs(quadrants({800, 600}), orientation)), orientation, preview);
    const Thumbnail decoded = decode(photo);
    EXPECT_EQ(decoded.state, State::Ready) << orientation;
    EXPECT_EQ(decoded.picture.size(), QSize(96, 72)) << orientation;
    EXPECT_EQ(decoded.photoSize, QSize(800, 600)) << orientation;
    EXPECT_TRUE(isUpright(decoded.picture)) << orientation;

    const Thumbnail embedded = embeddedPreview(viewOf(photo), 147, {});
    EXPECT_EQ(embedded.state, State::Preview) << orientation;
    EXPECT_EQ(embedded.picture.size(), QSize(160, 120)) << orientation;
    EXPECT_EQ(embedded.photoSize, QSize(800, 600)) << orientation;
    EXPECT_TRUE(isUpright(embedded.picture)) << orientation;
  }
}

TEST(Thumbnail, embeddedPreviewIsTakenOnlyWhereItWouldDo) {
  const QByteArray photo = encoded(quadrants({800, 600}));
  const QByteArray good = encoded(quadrants({160, 120}));
  EXPECT_EQ(embeddedPreview(viewOf(withExif(photo, 1, good)), 160, {}).state, State::Preview);
  struct Case {
    const char* name;
    QByteArray data;
    int pixels;
  };
  for (const Case& c : {
           Case{"the cell is larger", withExif(photo, 1, good), 161},
           Case{"other proportions", withExif(photo, 1, encoded(quadrants({160, 160}))), 96},
           Case{"bars above and below", withExif(encoded(quadrants({900, 600})), 1, good), 96},
           Case{"no preview", withExif(photo, 6), 96},
           Case{"no Exif at all", photo, 96},
           Case{"preview is no picture", withExif(photo, 1, "no picture"), 96},
           Case{"preview is another format",
                withExif(photo, 1, encoded(quadrants({160, 120}), "png")), 96},
           Case{"preview is cut off behind its header", withExif(photo, 1, good.left(20)), 96},
           Case{"a PNG file", encoded(quadrants({800, 600}), "png"), 96},
       }) {
    const Thumbnail thumbnail = embeddedPreview(viewOf(c.data), c.pixels, {});
    EXPECT_EQ(thumbnail.state, State::Unknown) << c.name;
    EXPECT_TRUE(thumbnail.picture.isNull()) << c.name;
  }
}

TEST(Thumbnail, keepsTheProportionsAndNeverEnlarges) {
  EXPECT_EQ(decode(encoded(quadrants({40, 30}))).picture.size(), QSize(40, 30));
  EXPECT_EQ(decode(encoded(quadrants({4000, 20}))).picture.size(), QSize(96, 1));
  const Thumbnail png = decode(encoded(quadrants({500, 1000}), "png"));
  EXPECT_EQ(png.picture.size(), QSize(48, 96));
  EXPECT_TRUE(isUpright(png.picture));
}

TEST(Thumbnail, whatIsNoPictureIsUndecodable) {
  const QByteArray jpeg = encoded(quadrants({800, 600}));
  const QByteArray png = encoded(quadrants({80, 60}), "png");
  QByteArray hugePng = png;
  hugePng.replace(16, 8, QByteArray::fromHex("7fffffff7fffffff"));
  struct Case {
    const char* name;
    QByteArray data;
  };
  for (const Case& c :
       {Case{"nothing", {}}, Case{"text", "IMG_0001"},
        Case{"a format that photos do not have", encoded(quadrants({8, 8}), "bmp")},
        Case{"JPEG cut off in its header", jpeg.left(100)}, Case{"JPEG mark alone", jpeg.left(3)},
        Case{"PNG cut off in its header", png.left(28)},
        Case{"PNG cut off behind its header", png.left(40)},
        Case{"PNG of more pixels than there are", hugePng}}) {
    EXPECT_EQ(decode(c.data).state, State::Undecodable) << c.name;
  }
  for (qsizetype size = 0; size < jpeg.size(); size += 31) {
    decode(jpeg.left(size));
    embeddedPreview(viewOf(jpeg.left(size)), 96, {});
  }
}

TEST(Thumbnail, ofAPhotoWithoutItsEndShowsWhatThereIs) {
  const QByteArray jpeg = encoded(quadrants({800, 600}));
  const Thumbnail half = decode(jpeg.left(jpeg.size() * 6 / 10));
  ASSERT_EQ(half.state, State::Ready);
  EXPECT_TRUE(isNear(half.picture.pixel(24, 18), Qt::red));
}

TEST(Thumbnail, staysWithinItsLimits) {
  const QByteArray photo = encoded(quadrants({800, 600}));
  DecodeLimits limits;
  limits.pixels = 800 * 600;
  EXPECT_EQ(decode(photo, 96, limits).state, State::Ready);
  limits.pixels -= 1;
  EXPECT_EQ(decode(photo, 96, limits).state, State::Undecodable);
  EXPECT_EQ(embeddedPreview(viewOf(photo), 96, limits).state, State::Undecodable);

  limits = {};
  limits.bytes = 800 * 600 * 4 - 1;
  EXPECT_EQ(decode(encoded(quadrants({800, 600}), "png"), 96, limits).state, State::Undecodable);
  EXPECT_EQ(decode(photo, 96, limits).state, State::Ready);  // decoded row by row

  limits = {};
  const QByteArray progressive = progressiveOf(quadrants({800, 600}));
  EXPECT_EQ(decode(progressive, 96, limits).state, State::Ready);
  limits.time = std::chrono::milliseconds(-1);
  EXPECT_EQ(decode(progressive, 96, limits).state, State::Undecodable);
  const std::atomic<bool> stop = true;
  EXPECT_EQ(decodeThumbnail(viewOf(progressive), 96, {}, stop).state, State::Undecodable);
}

TEST(PictureHeader, picturesOfManyScansKeepTheirCoefficients) {
  const QByteArray jpeg = encoded(quadrants({800, 600}));
  EXPECT_LT(pictureHeader(viewOf(jpeg))->decodedBytes, 800 * 600);
  EXPECT_TRUE(pictureHeader(viewOf(jpeg))->isOneScan);
  // The first scan tells of one component fewer than the frame: others are to follow.
  QByteArray apart = jpeg;
  const qsizetype scan = jpeg.indexOf(QByteArray("\xFF\xDA", 2));
  ASSERT_GT(scan, 0);
  apart[scan + 4] = '\x01';
  for (const QByteArray& other : {progressiveOf(quadrants({800, 600})), apart, jpeg.left(scan)}) {
    const auto header = pictureHeader(viewOf(other));
    ASSERT_TRUE(header);
    EXPECT_FALSE(header->isOneScan);
    EXPECT_GE(header->decodedBytes, 2 * 800 * 600);
    EXPECT_LE(header->decodedBytes, 6 * 800 * 600);
  }
}

TEST(ThumbnailStep, isTheNextOfAFewSizes) {
  EXPECT_EQ(thumbnailStep(1), 96);
  EXPECT_EQ(thumbnailStep(96), 96);
  EXPECT_EQ(thumbnailStep(97), 128);
  EXPECT_EQ(thumbnailStep(147), 192);
  EXPECT_EQ(thumbnailStep(1537), 2048);
  EXPECT_EQ(thumbnailStep(9'000), 2048);
}

Thumbnail thumbnailOfBytes(int bytes) {
  Thumbnail thumbnail;
  thumbnail.picture = QImage(bytes / 4, 1, QImage::Format_RGB32);
  return thumbnail;
}

TEST(ThumbnailCache, letsGoWhatWasNotAskedForLongest) {
  ThumbnailCache cache(4'000);
  for (const char* uid : {"a", "b", "c"}) {
    cache.insert(uid, thumbnailOfBytes(800));
  }
  const std::int64_t three = cache.byteCount();
  EXPECT_GT(three, 3 * 800);
  EXPECT_NE(cache.find("a"), nullptr);
  cache.insert("d", thumbnailOfBytes(800));
  EXPECT_EQ(cache.find("b"), nullptr);
  EXPECT_NE(cache.find("a"), nullptr);
  EXPECT_NE(cache.find("d"), nullptr);
  EXPECT_LE(cache.byteCount(), cache.capacity());
  EXPECT_EQ(cache.byteCount(), three);

  cache.insert("d", thumbnailOfBytes(400));
  EXPECT_EQ(cache.byteCount(), three - 400);
  EXPECT_EQ(cache.find("d")->picture.width(), 100);
  cache.insert("large", thumbnailOfBytes(40'000));
  EXPECT_EQ(cache.find("large"), nullptr);
  EXPECT_EQ(cache.byteCount(), 0);
}

}  // namespace
}  // namespace snaplift
