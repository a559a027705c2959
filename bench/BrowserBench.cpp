#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

#include <malloc.h>
#include <time.h>

#include "bench/CameraPhoto.h"
#include "bench/Ratio.h"
#include "bench/ViewMain.h"
#include "support/photos/TestPhotos.h"
#include "support/photos/TestPictures.h"
#include "widgets/photogrid/ImageBrowserView.h"

// What a grid of 100,000 photos costs the user interface's thread, against one of 1,000; and how
// long that thread is ever held up while camera photos load.
namespace snaplift::bench {
namespace {

constexpr int few = 1'000;
constexpr int many = 100'000;
constexpr double growthBar = 3;
constexpr double linearBar = 150;  // of what has to ask for each photo

// As many months as people with so many photos have.
std::vector<ImageBrowserGroup> months(int photoCount) {
  const int monthCount = photoCount <= few ? 12 : 300;
  std::vector<ImageBrowserGroup> groups;
  for (int month = 0; month < monthCount; ++month) {
    groups.push_back({"Month " + std::to_string(month),
                      photoCount * (month + 1) / monthCount - photoCount * month / monthCount});
  }
  return groups;
}

// A shown view, of photos in the order of the backup or by month with the latest first. Thumbnails
// are not what is measured, so none are made.
class Grid {
public:
  explicit Grid(int count, bool isGrouped = false) : m_photos(count) {
    if (isGrouped) {
      std::vector<int> order(static_cast<std::size_t>(count));
      std::iota(order.rbegin(), order.rend(), 0);
      m_photos.setOrder(std::move(order));
      m_photos.setGroups(months(count));
    }
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
  // The other way round, and back.
  bool rearrange() {
    m_view.selectAll();
    for (int i = 0; i < 2; ++i) {
      m_view.rearrangeData([last = m_view.itemCount() - 1](int index) { return last - index; });
      m_view.viewport()->repaint();
    }
    return m_view.selectionIndexes().count() == m_view.itemCount();
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

double millisecondsToFirstPaint() {
  QElapsedTimer timer;
  timer.start();
  Grid grid(many, true);
  const double time = static_cast<double>(timer.nsecsElapsed()) / 1e6;
  return grid.handOver() ? time : std::numeric_limits<double>::infinity();
}

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

// Frames of a view that scrolls from end to end while its photos load, in milliseconds, ascending.
struct Frames {
  std::vector<double> stalls;  // how late the event loop came to its next turn
  std::vector<double> work;    // what the thread itself worked in between, whoever else was busy
};

double threadMilliseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

Frames framesWhileLoading() {
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

  Frames frames;
  QElapsedTimer sinceTurn;
  double workBefore = threadMilliseconds();
  QTimer scroll;
  scroll.setTimerType(Qt::PreciseTimer);
  QObject::connect(&scroll, &QTimer::timeout, &view, [&] {
    const double late = static_cast<double>(sinceTurn.nsecsElapsed()) / 1e6 - frame;
    frames.stalls.push_back(std::max(late, 0.0));
    frames.work.push_back(threadMilliseconds() - workBefore);
    workBefore = threadMilliseconds();
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
  std::printf("%zu frames, %d reads of %d photos\n", frames.stalls.size(), photos.reads().count(),
              photoCount);
  std::sort(frames.stalls.begin(), frames.stalls.end());
  std::sort(frames.work.begin(), frames.work.end());
  return frames;
}

}  // namespace

int runViewBench(int argc, char** argv) {
  Ratios ratios;
  Grid small(few);
  Grid large(many);
  Grid smallGrouped(few, true);
  Grid largeGrouped(many, true);
  const auto compare = [&](const std::string& name, Grid& floor, Grid& subject, double bar,
                           bool (Grid::*job)()) {
    ratios.group(name, PageCache::Hot)
        .floor("1,000 photos", [&floor, job] { return (floor.*job)(); })
        .subject("100,000 photos", bar, [&subject, job] { return (subject.*job)(); });
  };
  compare("hand-over to first paint", small, large, growthBar, &Grid::handOver);
  compare("zoom steps", small, large, growthBar, &Grid::zoomSteps);
  compare("scroll frames", small, large, growthBar, &Grid::scrollFrames);
  compare("select all", small, large, growthBar, &Grid::selectAll);
  compare("rubber band", small, large, growthBar, &Grid::rubberBand);
  compare("by month: hand-over", smallGrouped, largeGrouped, growthBar, &Grid::handOver);
  compare("by month: zoom steps", smallGrouped, largeGrouped, growthBar, &Grid::zoomSteps);
  compare("by month: scroll frames", smallGrouped, largeGrouped, growthBar, &Grid::scrollFrames);
  compare("by month: rubber band", smallGrouped, largeGrouped, growthBar, &Grid::rubberBand);
  compare("rearrange, all selected", smallGrouped, largeGrouped, linearBar, &Grid::rearrange);
  constexpr double firstPaintBar = 100;
  ratios.figure("by month: first paint of 100,000", "ms", firstPaintBar, millisecondsToFirstPaint);
  ratios.figure("view memory for a photo", "bytes", 100, bytesPerPhoto);

  Frames frames;
  const auto frameFigure = [&](const char* name, double most, std::vector<double> Frames::*kind,
                               double part) {
    ratios.figure(name, "ms", most, [&frames, kind, part] {
      if (frames.stalls.empty()) {
        frames = framesWhileLoading();
      }
      const std::vector<double>& values = frames.*kind;
      return values[static_cast<std::size_t>(static_cast<double>(values.size() - 1) * part)];
    });
  };
  constexpr double stallBar = 50;
  constexpr double unheardOf = 1'000;  // the longest is reported, not judged
  frameFigure("loading: stall, 99 of 100 frames", stallBar, &Frames::stalls, 0.99);
  frameFigure("loading: longest stall", unheardOf, &Frames::stalls, 1);
  frameFigure("loading: own work, 99 of 100 frames", stallBar, &Frames::work, 0.99);
  frameFigure("loading: longest own work", unheardOf, &Frames::work, 1);
  return ratios.run(argc, argv);
}

}  // namespace snaplift::bench
