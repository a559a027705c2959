#include "bench/CameraPhoto.h"

#include <QImage>
#include <cmath>
#include <random>

#include "support/photos/TestPictures.h"

namespace snaplift::bench {
namespace {

QImage photo(int seed) {
  QImage picture(4'032, 3'024, QImage::Format_RGB32);
  std::minstd_rand random(static_cast<unsigned>(seed + 1));
  for (int y = 0; y < picture.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
    for (int x = 0; x < picture.width(); ++x) {
      const double shape = std::sin((x + 97 * seed) / 310.0) * std::cos(y / 240.0);
      const int noise = static_cast<int>(random() % 16);
      const int level = 120 + static_cast<int>(90 * shape) + noise;
      line[x] = qRgb(level, 200 - level / 2 + noise, 60 + y / 24 + noise);
    }
  }
  return picture;
}

}  // namespace

QByteArray cameraPhoto(int seed) {
  const QImage picture = photo(seed);
  const QImage small = picture.scaled(160, 120, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  return test::withExif(test::encoded(picture, "jpeg", 90), 1, test::encoded(small, "jpeg", 75));
}

}  // namespace snaplift::bench
