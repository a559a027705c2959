#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTest>
#include <optional>

#include "Gallery.h"
#include "pictures/Landscape.h"
#include "pictures/PhotoFile.h"
#include "support/photos/TestPhotos.h"
#include "views/browser/ORBImageBrowserView.h"
#include "widgets/photogrid/PhotoPreview.h"

namespace snaplift::gallery {
namespace {

// Landscapes, portrait for every fifth; two of the photos are broken.
std::optional<QByteArray> photo(int index) {
  if (index == 6 || index == 21) {
    return std::nullopt;
  }
  const bool portrait = index % 5 == 3;
  return QByteArray::fromStdString(
      samples::jpegPhoto(samples::paintLandscape(static_cast<std::uint32_t>(index),
                                                 portrait ? 900 : 1'200, portrait ? 1'200 : 900),
                         {}));
}

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

void saveAll(const QString& folder, const QString& scheme, const test::TestPhotos& photos) {
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

  test::TestPhotos grouped(photos);
  grouped.setGroups(
      {{"October 2011", 3}, {"September 2011", 9}, {"May 2010", 1}, {"March 2010", 47}});
  view.setDataSource(&grouped);
  view.setShowsSubtitles(true);
  view.selectGroup(1);
  waitForPhotos(view);
  shot("groups");
  view.verticalScrollBar()->setValue(90);
  waitForPhotos(view);
  view.setLayoutDirection(Qt::RightToLeft);
  shot("groups-right-to-left");
  view.setLayoutDirection(Qt::LeftToRight);
  view.setShowsSubtitles(false);
  view.setDataSource(&photos);

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
  const test::TestPhotos photos(60, photo);
  const QPalette before = QApplication::palette();
  QApplication::setPalette(lightPalette());
  saveAll(folder, "light", photos);
  QApplication::setPalette(darkPalette());
  saveAll(folder, "dark", photos);
  QApplication::setPalette(before);
}

}  // namespace snaplift::gallery
