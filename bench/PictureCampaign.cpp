#include <QApplication>
#include <QMainWindow>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <optional>
#include <random>
#include <vector>

#include "app/SLAppDelegate.h"
#include "bench/PeakMemory.h"
#include "bench/Ratio.h"
#include "bench/ViewMain.h"
#include "foundation/Log.h"
#include "foundation/files/TemporaryFolder.h"
#include "samples/BackupWriter.h"
#include "support/photos/HeicPicture.h"
#include "support/photos/TestPictures.h"
#include "widgets/desktop/MainThread.h"

// The window over a backup of 5,000 broken pictures of our own making, scrolled through to its end:
// how long it stood still, what its decoders took, and whether each photo was shown or marked. Then
// it is quit in the middle of loading, again and again. Run by ./dev pictures.
namespace snaplift::bench {
namespace {

using Clock = std::chrono::steady_clock;
using Random = std::minstd_rand;

constexpr int pictureCount = 5'000;
constexpr int quits = 20;
constexpr int patience = 300'000;  // milliseconds: some photos take a decoder all of its time

double millisecondsSince(Clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

std::vector<QByteArray> wholePictures() {
  QImage picture = test::quadrants({480, 360});
  Random random(7);
  for (int i = 0; i < 40'000; ++i) {
    picture.setPixel(static_cast<int>(random() % 480), static_cast<int>(random() % 360),
                     static_cast<QRgb>(random()));
  }
  const QByteArray jpeg = test::encoded(picture);
  const QByteArray small = test::encoded(picture.scaled(160, 120));
  std::vector<QByteArray> pictures{
      test::withExif(jpeg, 6, small),
      test::withExif(jpeg, 1, test::progressiveOf(picture.scaled(160, 120))),
      test::progressiveOf(picture),
      test::encoded(picture, "png"),
      test::encoded(picture.convertToFormat(QImage::Format_RGBA64), "png"),
      test::encoded(picture.convertToFormat(QImage::Format_Indexed8), "png"),
      test::heicOf(picture, 8, 8, 160)};
  std::erase_if(pictures, [](const QByteArray& bytes) { return bytes.isEmpty(); });
  return pictures;
}

// Breaks a picture in one of five ways, mostly near its start, where formats say what is to come.
QByteArray broken(const std::vector<QByteArray>& pictures, Random& random) {
  const auto below = [&](qsizetype bound) { return static_cast<qsizetype>(random()) % bound; };
  const auto any = [&] { return pictures[random() % pictures.size()]; };
  QByteArray bytes = any();
  const auto place = [&] {
    return below(random() % 3 != 0 ? std::min<qsizetype>(bytes.size(), 700) : bytes.size());
  };
  switch (random() % 5) {
    case 0:
      for (qsizetype flips = 1 + below(32); flips > 0; --flips) {
        bytes[place()] ^= static_cast<char>(1 << random() % 8);
      }
      break;
    case 1:  // a length, or whatever stands there, becomes very large
      bytes.replace(place(), 1 + below(4), QByteArray(4, random() % 2 != 0 ? '\xFF' : '\x7F'));
      break;
    case 2:
      bytes.truncate(below(bytes.size()));
      break;
    case 3: {
      const QByteArray other = any();
      bytes.insert(place(), other.mid(below(other.size()), below(20'000)));
      break;
    }
    default: {
      const qsizetype from = place();
      const QByteArray piece = bytes.mid(from, 1 + below(500));
      for (qsizetype copies = below(200); copies > 0; --copies) {
        bytes.insert(from, piece);
      }
    }
  }
  return bytes;
}

void writeBrokenPictures(const std::string& root) {
  const std::vector<QByteArray> pictures = wholePictures();
  Random random(20'121'123);
  samples::SampleBackup backup{.deviceName = "Phone", .productVersion = "5.1.1"};
  for (int i = 0; i < pictureCount; ++i) {
    backup.files.push_back({.domain = std::string(photoDomain(backup.generation)),
                            .path = "Media/DCIM/100APPLE/IMG_" + std::to_string(i) + ".JPG",
                            .content = broken(pictures, random).toStdString(),
                            .modificationDate = static_cast<std::uint32_t>(1'300'000'000 + i)});
  }
  samples::writeBackup(root + "/backup", backup);
}

class Window {
public:
  explicit Window(const std::string& root) {
    mainThread::resume();
    m_delegate.emplace();
    m_delegate->applicationDidFinishLaunching(root);
  }

  ORBImageBrowserView& browser() {
    return *m_delegate->window()->findChild<ORBImageBrowserView*>();
  }
  void quit() { m_delegate.reset(); }

private:
  std::optional<SLAppDelegate> m_delegate;
};

struct Result {
  double longestStall = 0;   // milliseconds between two turns of the event loop
  double decoderMemory = 0;  // megabytes of all decoders
  double unanswered = 0;     // photos that were neither shown nor marked
};

// Looks at every photo, a screen at a time, until each of the screen is settled.
Result scrollThrough(const std::string& root) {
  Result result;
  Window window(root);
  ORBImageBrowserView& browser = window.browser();
  if (!QTest::qWaitFor([&] { return browser.itemCount() == pictureCount; }, patience)) {
    return {1e9, 1e9, pictureCount};
  }
  QTimer watch;
  watch.setTimerType(Qt::PreciseTimer);
  auto last = Clock::now();
  QObject::connect(&watch, &QTimer::timeout, &browser, [&] {
    result.longestStall = std::max(result.longestStall, millisecondsSince(last));
    const auto bytes = static_cast<double>(childrenResidentMemoryInBytes());
    result.decoderMemory = std::max(result.decoderMemory, bytes / 1e6);
    last = Clock::now();
  });
  watch.start(10);
  std::vector<bool> isSettled(pictureCount, false);
  QScrollBar& bar = *browser.verticalScrollBar();
  for (bool isEnd = false; !isEnd; bar.setValue(bar.value() + bar.pageStep())) {
    isEnd = bar.value() == bar.maximum();
    if (!QTest::qWaitFor([&] { return !browser.isLoadingThumbnails(); }, patience)) {
      break;
    }
    for (int i = 0; i < pictureCount; ++i) {
      const Thumbnail* known = isSettled[i] ? nullptr : browser.thumbnailAtIndex(i);
      isSettled[i] =
          isSettled[i] ||
          (known != nullptr && (known->isBroken() || known->state == Thumbnail::State::Ready));
    }
    last = Clock::now();  // this look at all photos is ours
  }
  result.unanswered = static_cast<double>(std::count(isSettled.begin(), isSettled.end(), false));
  return result;
}

// The longest that the window took to end while it was loading; very long where a decoder stayed.
double longestQuit(const std::string& root) {
  double longest = 0;
  Random random(1);
  for (int i = 0; i < quits; ++i) {
    Window window(root);
    const int moment = static_cast<int>(random() % 1'000);
    QTest::qWait(moment);
    const auto begin = Clock::now();
    window.quit();
    longest = std::max(longest, millisecondsSince(begin));
    longest = std::max(longest, childrenResidentMemoryInBytes() > 0 ? 1e9 : 0);
  }
  return longest;
}

}  // namespace

int runViewBench(int argc, char** argv) {
  const LogCapture silent([](const std::string&) {});
  const TemporaryFolder folder({"/var/tmp"});
  writeBrokenPictures(folder.path());
  const Result result = scrollThrough(folder.path());
  Ratios ratios;
  ratios.figure("5,000 broken pictures: longest stall", "ms", 150,
                [&] { return result.longestStall; });
  ratios.figure("5,000 broken pictures: all decoders", "MB resident", 600,
                [&] { return result.decoderMemory; });
  ratios.figure("5,000 broken pictures: neither shown nor marked", "photos", 0,
                [&] { return result.unanswered; });
  ratios.figure("quitting while they load, longest of 20", "ms", 1'000,
                [&] { return longestQuit(folder.path()); });
  return ratios.run(argc, argv);
}

}  // namespace snaplift::bench
