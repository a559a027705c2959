#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyleFactory>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <vector>

#include <malloc.h>

#include "bench/CameraPhoto.h"
#include "bench/Ratio.h"
#include "support/pictures/TestPhotos.h"
#include "support/pictures/TestPictures.h"
#include "toolkit/ImageBrowserView.h"

// What a grid of 100,000 photos costs the user interface's thread, against one of 1,000; and how
// long that thread is ever held up while camera photos load.
namespace snaplift::bench {
namespace {

constexpr int few = 1'000;
constexpr int many = 100'000;
constexpr double growthBar = 3;

// A shown view. Thumbnails are not what is measured, so none are made.
class Grid {
public:
  explicit Grid(int count) : m_photos(count) {
    m_view.resize(1'000, 800);
    m_view.setThumbnailsSuspended(true);
    m_view.setDataSource(&m_photos);
    m_view.show();
    QCoreApplication::processEvents();
  }

  bool handOver() {
    m_view.setDataSource(&m_photos);
    m_view.viewport()->repaint();
    return m_view.verticalScrollBar()->value() == 0;
  }
  bool zoomSteps() {
    m_view.verticalScrollBar()->setValue(m_view.verticalScrollBar()->maximum() / 2);
    for (const float zoom : {0.35F, 0.4F, 0.45F, 0.3F}) {
      m_view.setZoomValue(zoom);
      m_view.viewport()->repaint();
    }
    return m_view.zoomValue() == 0.3F;
  }
  bool scrollFrames() {
    QScrollBar* bar = m_view.verticalScrollBar();
    const int start = bar->maximum() / 3;
    for (int frame = 0; frame < 20; ++frame) {
      bar->setValue(start + 40 * frame);
      QCoreApplication::processEvents();
    }
    return bar->value() > start;
  }
  bool selectAll() {
    bool isRight = true;
    for (int i = 0; i < 20; ++i) {
      m_view.selectAll();
      m_view.viewport()->repaint();
      isRight = isRight && m_view.selectionIndexes().count() == m_view.itemCount();
      m_view.deselectAll();
    }
    return isRight;
  }
  // A band over two of the columns, from the first photo to beyond the last, moved a few times.
  bool rubberBand() {
    QScrollBar* bar = m_view.verticalScrollBar();
    bar->setValue(0);
    const QPoint start = m_view.itemFrameAtIndex(1).topLeft() - QPoint(4, 4);
    send(QEvent::MouseButtonPress, start);
    bar->setValue(bar->maximum());
    for (int i = 0; i < 20; ++i) {
      send(QEvent::MouseMove, QPoint(start.x() + 250 + i, 600 + i));
      m_view.viewport()->repaint();
    }
    const int selected = m_view.selectionIndexes().count();
    send(QEvent::MouseButtonRelease, {start.x() + 270, 620});
    return selected > m_view.itemCount() / 5 && selected < m_view.itemCount();
  }

private:
  void send(QEvent::Type type, QPoint at) {
    QMouseEvent event(type, at, m_view.viewport()->mapToGlobal(at),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(m_view.viewport(), &event);
  }

  test::TestPhotos m_photos;
  ImageBrowserView m_view;
};

// Of the view, with every second photo selected, the view scrolled through and all captions seen.
double bytesPerPhoto() {
  const Grid warm(few);
  const auto before = mallinfo2();
  Grid grid(many);
  grid.rubberBand();
  grid.scrollFrames();
  const auto after = mallinfo2();
  return static_cast<double>(after.uordblks + after.hblkhd - before.uordblks - before.hblkhd) /
         many;
}

// How long the event loop was held up, in milliseconds, at each of its turns.
std::vector<double> stallsWhileLoading() {
  constexpr int photoCount = 2'000;
  constexpr int frame = 16;  // milliseconds
  constexpr int pixelsPerFrame = 20;
  std::vector<QByteArray> files;
  for (int i = 0; i < 4; ++i) {
    files.push_back(cameraPhoto(i));
  }
  test::TestPhotos photos(photoCount,
                          [&](int i) { return files[static_cast<std::size_t>(i % 4)]; });
  ImageBrowserView view;
  view.resize(1'000, 800);
  view.setDataSource(&photos);
  view.show();

  std::vector<double> stalls;
  QElapsedTimer sinceTurn;
  QTimer scroll;
  scroll.setTimerType(Qt::PreciseTimer);
  QObject::connect(&scroll, &QTimer::timeout, &view, [&] {
    const double late = static_cast<double>(sinceTurn.nsecsElapsed()) / 1e6 - frame;
    stalls.push_back(std::max(late, 0.0));
    sinceTurn.start();
    QScrollBar* bar = view.verticalScrollBar();
    bar->setValue(bar->value() + pixelsPerFrame);
    if (bar->value() == bar->maximum()) {
      QCoreApplication::exit();
    }
  });
  QCoreApplication::processEvents();
  sinceTurn.start();
  scroll.start(frame);
  QCoreApplication::exec();
  view.hide();
  std::printf("%zu frames, %d photos read\n", stalls.size(), photos.reads().count());
  std::sort(stalls.begin(), stalls.end());
  return stalls;
}

int runBrowserBench(int argc, char** argv) {
  Ratios ratios;
  Grid small(few);
  Grid large(many);
  const auto compare = [&](const char* name, bool (Grid::*job)()) {
    ratios.group(name, PageCache::Hot)
        .floor("1,000 photos", [&small, job] { return (small.*job)(); })
        .subject("100,000 photos", growthBar, [&large, job] { return (large.*job)(); });
  };
  compare("hand-over to first paint", &Grid::handOver);
  compare("zoom steps", &Grid::zoomSteps);
  compare("scroll frames", &Grid::scrollFrames);
  compare("select all", &Grid::selectAll);
  compare("rubber band", &Grid::rubberBand);
  ratios.figure("view memory for a photo", "bytes", 100, bytesPerPhoto);

  std::vector<double> stalls;
  const auto atLeastOnce = [&stalls]() -> const std::vector<double>& {
    if (stalls.empty()) {
      stalls = stallsWhileLoading();
    }
    return stalls;
  };
  ratios.figure("stall while loading, 99 of 100", "ms", 50,
                [&] { return atLeastOnce()[stalls.size() * 99 / 100]; });
  ratios.figure("stall while loading, longest", "ms", 1'000, [&] { return atLeastOnce().back(); });
  return ratios.run(argc, argv);
}

}  // namespace
}  // namespace snaplift::bench

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  return snaplift::bench::runBrowserBench(argc, argv);
}
