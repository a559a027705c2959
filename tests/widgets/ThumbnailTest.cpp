#include <QColorSpace>
#include <chrono>
#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "pictures/PhotoFile.h"
#include "support/photos/HeicPicture.h"
#include "support/photos/TestPictures.h"
#include "widgets/thumbnails/PictureDecoder.h"
#include "widgets/thumbnails/Thumbnail.h"
#include "widgets/thumbnails/ThumbnailCache.h"

namespace snaplift {
namespace {

using test::encoded;
using test::progressiveOf;
using test::quadrants;
using test::storedAs;
using test::viewOf;
using test::withExif;

using Outcome = DecodedPicture::Outcome;
using Kind = PictureRequest::Kind;

constexpr std::size_t memory = 100'000'000;

// Every case goes the whole way, through one decoder process for all of them.
DecodedPicture decode(const QByteArray& data, int pixels = 96, Kind kind = Kind::Picture) {
  static PictureDecoder decoder({{}, memory});
  static const StopSignal goOn;
  return decoder.decode({kind, static_cast<std::uint32_t>(pixels)}, viewOf(data), goOn);
}

DecodedPicture embeddedPreview(const QByteArray& data, int pixels = 96) {
  return decode(data, pixels, Kind::EmbeddedPreview);
}

struct NamedFile {
  const char* name;
  QByteArray data;
  int pixels = 96;
};

// Of four inks, without black.
QByteArray inkJpegOf(const QImage& picture) {
  const QImage inks = picture.convertToFormat(QImage::Format_RGBA8888);
  return QByteArray::fromStdString(
      samples::jpegOfPixels(inks.constBits(), inks.width(), inks.height(), 4, 75));
}

// By default within what JPEG leaves of a pure colour.
bool isNear(QRgb color, QColor expected, int tolerance = 60) {
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

TEST(Picture, isUprightInEveryOrientationDecodedOrEmbedded) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const QByteArray preview = encoded(storedAs(quadrants({160, 120}), orientation));
    const QByteArray photo =
        withExif(encoded(storedAs(quadrants({800, 600}), orientation)), orientation, preview);
    struct Case {
      DecodedPicture decoded;
      QSize size;
    };
    for (const Case& c :
         {Case{decode(photo), {96, 72}}, Case{embeddedPreview(photo, 147), {160, 120}}}) {
      EXPECT_EQ(c.decoded.outcome, Outcome::Decoded) << orientation;
      EXPECT_EQ(c.decoded.image.size(), c.size) << orientation;
      EXPECT_EQ(c.decoded.wholeSize, QSize(800, 600)) << orientation;
      EXPECT_TRUE(isUpright(c.decoded.image)) << orientation;
      EXPECT_FALSE(c.decoded.isDamaged) << orientation;
    }
  }
}

TEST(Picture, embeddedPreviewIsTakenOnlyWhereItWouldDo) {
  const QByteArray photo = encoded(quadrants({800, 600}));
  const QByteArray good = encoded(quadrants({160, 120}));
  EXPECT_EQ(embeddedPreview(withExif(photo, 1, good), 160).outcome, Outcome::Decoded);
  for (const NamedFile& c : {
           NamedFile{"the cell is larger", withExif(photo, 1, good), 161},
           NamedFile{"other proportions", withExif(photo, 1, encoded(quadrants({160, 160})))},
           NamedFile{"bars above and below", withExif(encoded(quadrants({900, 600})), 1, good)},
           NamedFile{"no preview", withExif(photo, 6)},
           NamedFile{"no Exif at all", photo},
           NamedFile{"preview is no picture", withExif(photo, 1, "no picture")},
           NamedFile{"preview is another format",
                     withExif(photo, 1, encoded(quadrants({160, 120}), "png"))},
           NamedFile{"preview is cut off behind its header", withExif(photo, 1, good.left(20))},
           NamedFile{"a PNG file", encoded(quadrants({800, 600}), "png")},
       }) {
    const DecodedPicture preview = embeddedPreview(c.data, c.pixels);
    EXPECT_EQ(preview.outcome, Outcome::NoPreview) << c.name;
    EXPECT_TRUE(preview.image.isNull()) << c.name;
  }
}

TEST(Picture, keepsTheProportionsAndIsNeverEnlarged) {
  EXPECT_EQ(decode(encoded(quadrants({40, 30}))).image.size(), QSize(40, 30));
  EXPECT_EQ(decode(encoded(quadrants({4000, 20}))).image.size(), QSize(96, 1));
  EXPECT_EQ(decode(encoded(quadrants({4000, 3000})), 4000).image.size(), QSize(4000, 3000));
}

// Of each format, layout of pixels and way of compression: the size, the place of the quadrants and
// their colours are right.
TEST(Picture, isRightInEveryEncoding) {
  const QImage picture = quadrants({500, 1000});
  QImage wide = picture;
  wide.setColorSpace(QColorSpace::SRgb);
  wide.convertToColorSpace(QColorSpace::AdobeRgb);
  for (const NamedFile& c : {
           NamedFile{"JPEG", encoded(picture)},
           NamedFile{"progressive JPEG", progressiveOf(picture)},
           NamedFile{"JPEG of four inks", inkJpegOf(picture)},
           NamedFile{"JPEG with a profile", encoded(wide)},
           NamedFile{"JPEG with stray bytes", encoded(picture).insert(2, QByteArray(7, '\x2A'))},
           NamedFile{"PNG", encoded(picture, "png")},
           NamedFile{"PNG with a profile", encoded(wide, "png")},
           NamedFile{"PNG of 16 bits",
                     encoded(picture.convertToFormat(QImage::Format_RGBX64), "png")},
           NamedFile{"PNG with a palette",
                     encoded(picture.convertToFormat(QImage::Format_Indexed8), "png")},
       }) {
    const DecodedPicture decoded = decode(c.data);
    ASSERT_EQ(decoded.outcome, Outcome::Decoded) << c.name;
    EXPECT_EQ(decoded.image.size(), QSize(48, 96)) << c.name;
    EXPECT_EQ(decoded.wholeSize, QSize(500, 1000)) << c.name;
    EXPECT_TRUE(isUpright(decoded.image)) << c.name;
    EXPECT_FALSE(decoded.isDamaged) << c.name;
  }
}

TEST(Picture, ofHeifIsTurnedAsItsFileSaysAndBringsItsPreview) {
  for (const int bits : {8, 10}) {
    const QByteArray file = test::heicOf(storedAs(quadrants({640, 480}), 6), 6, bits, 240);
    if (file.isEmpty()) {
      GTEST_SKIP() << "built without libheif";
    }
    struct Case {
      DecodedPicture decoded;
      int longerSide;
    };
    for (const Case& c : {Case{decode(file), 96}, Case{decode(file, 640), 640},
                          Case{embeddedPreview(file, 147), 240}}) {
      ASSERT_EQ(c.decoded.outcome, Outcome::Decoded) << bits;
      EXPECT_EQ(c.decoded.image.width(), c.longerSide) << bits;
      EXPECT_EQ(c.decoded.wholeSize, QSize(640, 480)) << bits;
      EXPECT_TRUE(isUpright(c.decoded.image)) << bits;
    }
    EXPECT_EQ(decode(file.left(file.size() / 2)).outcome, Outcome::NoPicture);
  }
}

TEST(Picture, isShownInTheColoursOfTheScreen) {
  // Half of Adobe's green is brighter than half of the screen's, and half of a linear grey much so.
  const auto shown = [](QImage::Format format, const QColorSpace& space, const char* encoding) {
    QImage picture(64, 64, format);
    picture.fill(qRgb(128, 128, 128));
    picture.setColorSpace(space);
    return decode(encoded(picture, encoding)).image.pixelColor(32, 32);
  };
  for (const char* encoding : {"jpeg", "png"}) {
    const QColor linear = shown(QImage::Format_RGB32, QColorSpace::SRgbLinear, encoding);
    EXPECT_TRUE(isNear(linear.rgb(), QColor(188, 188, 188), 4)) << encoding;
    const QColor plain = shown(QImage::Format_RGB32, QColorSpace::SRgb, encoding);
    EXPECT_TRUE(isNear(plain.rgb(), QColor(128, 128, 128), 4)) << encoding;
    const QColor grey = shown(QImage::Format_Grayscale8, {}, encoding);
    EXPECT_TRUE(isNear(grey.rgb(), QColor(128, 128, 128), 4)) << encoding;
  }
}

TEST(Picture, isSeenThroughWhereItsFileSays) {
  QImage glass(64, 64, QImage::Format_ARGB32);
  glass.fill(qRgba(255, 0, 0, 128));
  const DecodedPicture decoded = decode(encoded(glass, "png"), 16);
  ASSERT_EQ(decoded.image.format(), QImage::Format_ARGB32_Premultiplied);
  EXPECT_EQ(decoded.image.pixelColor(8, 8), QColor(255, 0, 0, 128));
  EXPECT_EQ(decode(encoded(quadrants({8, 8}), "png")).image.format(), QImage::Format_RGB32);
}

TEST(Picture, withoutItsEndShowsWhatThereIs) {
  QImage noise = quadrants({600, 800});
  for (int y = 0; y < noise.height(); ++y) {  // so that the bytes are spread over the rows
    for (int x = y % 7; x < noise.width(); x += 7) {
      noise.setPixel(x, y, noise.pixel(x, y) ^ qRgb(y % 29, x % 31, x * y % 23));
    }
  }
  for (const NamedFile& c :
       {NamedFile{"JPEG", encoded(noise)}, NamedFile{"progressive JPEG", progressiveOf(noise)},
        NamedFile{"PNG", encoded(noise, "png")}}) {
    const DecodedPicture whole = decode(c.data);
    EXPECT_FALSE(whole.isDamaged) << c.name;
    for (const int percent : {35, 60, 95}) {
      const DecodedPicture part = decode(c.data.left(c.data.size() * percent / 100));
      ASSERT_EQ(part.outcome, Outcome::Decoded) << c.name << percent;
      EXPECT_TRUE(part.isDamaged) << c.name << percent;
      EXPECT_TRUE(isNear(part.image.pixel(18, 12), Qt::red)) << c.name << percent;
      EXPECT_TRUE(isNear(part.image.pixel(54, 12), Qt::green)) << c.name << percent;
    }
  }
}

TEST(Picture, isNoneWhereTheBytesAreNone) {
  const QByteArray jpeg = encoded(quadrants({800, 600}));
  const QByteArray png = encoded(quadrants({80, 60}), "png");
  QByteArray hugePng = png;
  hugePng.replace(16, 8, QByteArray::fromHex("7fffffff7fffffff"));
  for (const QByteArray& data :
       {QByteArray("x"), QByteArray("IMG_0001"), encoded(quadrants({8, 8}), "bmp"), jpeg.left(100),
        jpeg.left(3), png.left(28), png.left(40), hugePng}) {
    EXPECT_EQ(decode(data).outcome, Outcome::NoPicture) << data.left(40).toHex().constData();
  }
  for (qsizetype size = 3; size < jpeg.size(); size += 101) {
    const Outcome outcome = decode(jpeg.left(size)).outcome;
    EXPECT_TRUE(outcome == Outcome::Decoded || outcome == Outcome::NoPicture) << size;
    EXPECT_EQ(embeddedPreview(jpeg.left(size)).outcome, Outcome::NoPreview) << size;
  }
}

TEST(Picture, thatIsGivenUpInTheMiddleShowsWhatCameBefore) {
  QByteArray jpeg = progressiveOf(quadrants({600, 800}));
  const qsizetype lastScan = jpeg.lastIndexOf(QByteArray("\xFF\xDA", 2));
  jpeg.insert(lastScan, QByteArray::fromHex("ffc2000b080010001001011100"));  // a second frame
  const DecodedPicture part = decode(jpeg);
  ASSERT_EQ(part.outcome, Outcome::Decoded);
  EXPECT_TRUE(part.isDamaged);
  EXPECT_TRUE(isUpright(part.image));
}

// A progressive JPEG file of `size` whose scans say nothing.
QByteArray emptyScans(QSize size, int scans) {
  const QByteArray jpeg = progressiveOf(quadrants({64, 48}));
  const qsizetype frame = jpeg.indexOf(QByteArray("\xFF\xC2", 2));
  const qsizetype scan = jpeg.indexOf(QByteArray("\xFF\xDA", 2));
  QByteArray bomb = jpeg.left(scan);
  bomb[frame + 5] = static_cast<char>(size.height() >> 8);
  bomb[frame + 6] = static_cast<char>(size.height());
  bomb[frame + 7] = static_cast<char>(size.width() >> 8);
  bomb[frame + 8] = static_cast<char>(size.width());
  for (int i = 0; i < scans; ++i) {  // one component, the first AC band
    bomb += QByteArray::fromHex("ffda000801010001050100");
  }
  return bomb;
}

// What a picture of few bytes can cost its reader: each of these is over in a moment.
TEST(Picture, thatIsABombCostsNothing) {
  const QByteArray text = encoded(quadrants({8, 8}), "png").left(33) +
                          QByteArray::fromHex("7fffffff7a545874") + "Comment\0\0";
  QByteArray hidden = emptyScans({65'500, 65'500}, 1);
  hidden.insert(2, QByteArray::fromHex("ffd0"));
  std::vector<QByteArray> bombs{text, emptyScans({4'000, 3'000}, 2'000)};
#ifndef SNAPLIFT_SANITIZED  // which does without the bound of memory
  bombs.push_back(hidden);
#endif
  for (const QByteArray& bomb : bombs) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_NE(decode(bomb).outcome, Outcome::Failed);
    EXPECT_EQ(embeddedPreview(bomb).outcome, Outcome::NoPreview);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(9));
  }
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
  EXPECT_NE(cache.find("a"), nullptr);
  cache.insert("d", thumbnailOfBytes(800));
  EXPECT_EQ(cache.find("b"), nullptr);
  EXPECT_NE(cache.find("a"), nullptr);
  EXPECT_LE(cache.byteCount(), cache.capacity());
  const std::int64_t three = cache.byteCount();
  cache.insert("d", thumbnailOfBytes(400));
  EXPECT_EQ(cache.byteCount(), three - 400);
  cache.insert("large", thumbnailOfBytes(40'000));
  EXPECT_EQ(cache.find("large"), nullptr);
  EXPECT_EQ(cache.byteCount(), 0);
}

}  // namespace
}  // namespace snaplift
