#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QTest>
#include <cmath>

#include "Gallery.h"
#include "toolkit/PhotoPreview.h"
#include "ui/browser/ORBImageBrowserView.h"

namespace snaplift::gallery {
namespace {

// A landscape of hills under a sky, another for each seed; portrait for every fifth.
QByteArray paintedPhoto(int seed) {
  const QSize size = seed % 5 == 3 ? QSize(900, 1'200) : QSize(1'200, 900);
  QImage picture(size, QImage::Format_RGB32);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const int hue = seed * 47 % 360;
  QLinearGradient sky(0, 0, 0, size.height());
  sky.setColorAt(0, QColor::fromHsv((hue + 200) % 360, 110, 215));
  sky.setColorAt(0.7, QColor::fromHsv((hue + 30) % 360, 60, 250));
  painter.fillRect(picture.rect(), sky);
  painter.setBrush(QColor(255, 250, 225, 230));
  painter.drawEllipse(QPointF(size.width() * (0.2 + seed * 29 % 60 / 100.0), size.height() * 0.3),
                      70, 70);
  for (int layer = 0; layer < 4; ++layer) {
    QPainterPath hill(QPointF(0, size.height()));
    for (int x = 0; x < size.width() + 8; x += 8) {
      const double wave = std::sin(x / (90.0 + 50 * layer) + seed * 1.7 + layer * 2.1);
      hill.lineTo(x, size.height() * (0.48 + 0.13 * layer) + 55 * wave);
    }
    hill.lineTo(size.width(), size.height());
    painter.setBrush(
        QColor::fromHsv((hue + 90 + 14 * layer) % 360, 90 + 30 * layer, 190 - 38 * layer));
    painter.drawPath(hill);
  }
  painter.end();
  QByteArray data;
  QBuffer buffer(&data);
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, "jpeg", 85);
  return data;
}

class GalleryPhoto final : public ImageBrowserItem {
public:
  GalleryPhoto(std::string title, std::function<std::optional<Bytes>()> bytes)
      : m_title(std::move(title)), m_bytes(std::move(bytes)) {}
  std::string imageUID() const override { return m_title; }
  std::string imageTitle() const override { return m_title; }
  std::optional<Bytes> imageRepresentation() const override { return m_bytes(); }

private:
  std::string m_title;
  std::function<std::optional<Bytes>()> m_bytes;
};

std::optional<Bytes> bytesOfFile(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    return std::nullopt;
  }
  return Bytes::copyOf(bytesOf(file.readAll().toStdString()));
}

// The pictures of the folder in $SNAPLIFT_PICTURES, or painted ones; two of them broken.
class Photos final : public ImageBrowserViewDataSource {
public:
  Photos() {
    const QDir folder(qEnvironmentVariable("SNAPLIFT_PICTURES"));
    if (qEnvironmentVariableIsSet("SNAPLIFT_PICTURES")) {
      for (const QString& name : folder.entryList({"*.jpg", "*.JPG", "*.png", "*.PNG"})) {
        add(name, [path = folder.filePath(name)] { return bytesOfFile(path); });
      }
    }
    for (int i = 0; m_items.size() < 60; ++i) {
      const QString name =
          QStringLiteral("IMG_%1.%2").arg(i + 1, 4, 10, QChar('0')).arg(i % 7 == 5 ? "PNG" : "JPG");
      if (i == 6 || i == 21) {
        add(name, [] { return std::optional<Bytes>(); });
      } else {
        add(name,
            [i] { return std::optional(Bytes::copyOf(bytesOf(paintedPhoto(i).toStdString()))); });
      }
    }
  }

  int numberOfItemsInImageBrowser(const ImageBrowserView&) const override {
    return static_cast<int>(m_items.size());
  }
  ImageBrowserItemPointer imageBrowserItemAtIndex(const ImageBrowserView&,
                                                  int index) const override {
    return m_items[static_cast<std::size_t>(index)];
  }

private:
  void add(const QString& name, std::function<std::optional<Bytes>()> bytes) {
    m_items.push_back(std::make_shared<GalleryPhoto>(name.toStdString(), std::move(bytes)));
  }

  std::vector<ImageBrowserItemPointer> m_items;
};

void waitForPhotos(const ImageBrowserView& view) {
  constexpr int patience = 60'000;
  if (!QTest::qWaitFor([&] { return !view.isLoadingThumbnails(); }, patience)) {
    qFatal("The photos do not come.");
  }
}

void select(ImageBrowserView& view, std::initializer_list<int> indexes) {
  IndexSet set(view.itemCount());
  for (const int index : indexes) {
    set.insert(index);
  }
  view.setSelectionIndexes(set);
}

void moveBand(ImageBrowserView& view, QEvent::Type type, QPoint to) {
  QMouseEvent event(type, to, view.viewport()->mapToGlobal(to),
                    type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, Qt::LeftButton,
                    Qt::NoModifier);
  QApplication::sendEvent(view.viewport(), &event);
}

void saveAll(const QString& folder, const QString& scheme, const Photos& photos) {
  ORBImageBrowserView view;
  const auto shot = [&](const QString& state) {
    save(view, folder, QStringLiteral("browser-%1-%2").arg(state, scheme));
  };
  view.resize(900, 640);
  view.show();
  QApplication::setActiveWindow(&view);
  view.setFocus();
  view.setDataSource(&photos);
  QCoreApplication::processEvents();
  shot("placeholders");
  waitForPhotos(view);
  shot("zoom-0.3");

  view.stepTo(8);
  select(view, {1, 2, 6, 8});
  shot("selection");
  view.deselectAll();
  moveBand(view, QEvent::MouseButtonPress, view.itemFrameAtIndex(1).topLeft() - QPoint(6, 4));
  moveBand(view, QEvent::MouseMove, view.itemFrameAtIndex(8).center());
  shot("band");
  moveBand(view, QEvent::MouseButtonRelease, view.itemFrameAtIndex(8).center());
  view.deselectAll();
  for (const float zoom : {0.1F, 1.0F}) {
    view.setZoomValue(zoom);
    waitForPhotos(view);
    shot(QStringLiteral("zoom-%1").arg(static_cast<double>(zoom), 0, 'f', 1));
  }
  view.setPreviewOpen(true);
  const auto* preview = view.findChild<PhotoPreview*>();
  const bool isThere =
      QTest::qWaitFor([&] { return preview->photo().state == Thumbnail::State::Ready; }, 60'000);
  shot(isThere ? "preview" : "preview-missing");
}

}  // namespace

void paintBrowser(const QString& folder) {
  const Photos photos;
  const QPalette before = QApplication::palette();
  QApplication::setPalette(lightPalette());
  saveAll(folder, "light", photos);
  QApplication::setPalette(darkPalette());
  saveAll(folder, "dark", photos);
  QApplication::setPalette(before);
}

}  // namespace snaplift::gallery
