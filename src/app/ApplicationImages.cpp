#include "app/ApplicationImages.h"

#include <QApplication>
#include <QPixmapCache>
#include <algorithm>
#include <cmath>

// The pictures lie in a static library, from which a linker takes only what somebody calls. The
// call has to be made outside of every namespace.
static void loadResources() {
  Q_INIT_RESOURCE(snaplift);
}

namespace snaplift {

QPixmap imageNamed(std::string_view name) {
  const int scale = std::clamp(static_cast<int>(std::ceil(qApp->devicePixelRatio())), 1, 3);
  QString file = ":/icons/" + QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  if (scale > 1) {
    file.insert(file.lastIndexOf('.'), QString("@%1x").arg(scale));
  }
  QPixmap image;
  if (!QPixmapCache::find(file, &image)) {
    loadResources();
    image = QPixmap(file, "png");
    image.setDevicePixelRatio(scale);
    QPixmapCache::insert(file, image);
  }
  return image;
}

QIcon applicationIcon() {
  loadResources();
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 128}) {
    // Not addFile(), which loads every decoder that there is to learn the file's format.
    icon.addPixmap(QPixmap(QString(":/icons/app.snaplift.Snaplift-%1.png").arg(size), "png"));
  }
  return icon;
}

}  // namespace snaplift
