#include <QApplication>
#include <QDrag>
#include <QSocketNotifier>
#include <QTextStream>
#include <QTimer>
#include <iostream>
#include <thread>
#include <vector>

#include "foundation/FileWriting.h"
#include "foundation/Path.h"
#include "samples/browser/TestPhotos.h"
#include "samples/browser/TestPictures.h"
#include "toolkit/MainThread.h"
#include "ui/browser/ORBImageBrowserView.h"

// A window with five photos, for a script that moves the pointer. What happens is told on the
// standard output, one line each:
//   photo <index> <x> <y>       the middle of a photo on the screen, at every line of the input
//   empty <x> <y>               a point of the grid without a photo
//   reads <count>               how often photos have been read so far
//   drag begins / drag ends
//   action <name>               what the target under the pointer would do: none, copy, other
//   exported <path>             a photo has arrived
namespace snaplift {
namespace {

void tell(const std::string& line) {
  std::cout << line << std::endl;
}

class Exporter final : public ORBImageBrowserViewDelegate {
public:
  ~Exporter() override {
    for (std::thread& thread : m_threads) {
      thread.join();
    }
  }
  std::optional<std::vector<std::string>> imageBrowserExportItemsToDestination(
      ORBImageBrowserView&, const std::vector<ImageBrowserItemPointer>& items,
      const std::string& destination) override {
    std::vector<std::string> names;
    for (const ImageBrowserItemPointer& item : items) {
      names.push_back(item->imageTitle());
      m_threads.emplace_back([item, destination] {
        const std::string path = joinPath(destination, item->imageTitle());
        const std::optional<Bytes> bytes = item->imageRepresentation();
        if (bytes && !createFile(path, *bytes)) {
          mainThread::run([path] { tell("exported " + path); });
        }
      });
    }
    return names;
  }

private:
  std::vector<std::thread> m_threads;
};

class DragWindow final : public ORBImageBrowserView {
public:
  explicit DragWindow(test::TestPhotos& photos) : m_photos(photos) {}

  void tellPlaces() {
    for (int i = 0; i < itemCount(); ++i) {
      const QPoint at = viewport()->mapToGlobal(itemFrameAtIndex(i).center());
      tell("photo " + std::to_string(i) + " " + std::to_string(at.x()) + " " +
           std::to_string(at.y()));
    }
    tellReads();
  }

protected:
  void dragPromisedFilesOfTypesFromRectSourceSlideBackEvent(const QStringList& types,
                                                            const QRect& rect,
                                                            PromisedFilesSource& source,
                                                            bool slideBack,
                                                            QMouseEvent* event) override {
    QTimer::singleShot(0, this, [this] {
      if (const auto* drag = qApp->findChild<QDrag*>()) {
        connect(drag, &QDrag::actionChanged, this, [](Qt::DropAction action) {
          tell(std::string("action ") + (action == Qt::CopyAction     ? "copy"
                                         : action == Qt::IgnoreAction ? "none"
                                                                      : "other"));
        });
      }
      tell("drag begins");
    });
    ORBImageBrowserView::dragPromisedFilesOfTypesFromRectSourceSlideBackEvent(types, rect, source,
                                                                              slideBack, event);
    tellReads();
    tell("drag ends");
  }

private:
  void tellReads() { tell("reads " + std::to_string(m_photos.reads().count())); }

  test::TestPhotos& m_photos;
};

}  // namespace
}  // namespace snaplift

int main(int argc, char** argv) {
  using namespace snaplift;
  QApplication application(argc, argv);
  const QByteArray picture = test::encoded(test::quadrants({1'600, 1'200}));
  test::TestPhotos photos(5, [picture](int) { return picture; });
  Exporter exporter;
  DragWindow window(photos);
  window.setWindowTitle("dragwindow");
  window.setDelegate(&exporter);
  window.setDataSource(&photos);
  window.setGeometry(40, 60, 560, 420);
  window.show();

  QSocketNotifier input(0, QSocketNotifier::Read);
  QObject::connect(&input, &QSocketNotifier::activated, &window, [&] {
    std::string line;
    if (!std::getline(std::cin, line)) {
      QApplication::quit();
    } else if (window.isLoadingThumbnails()) {
      tell("busy");
    } else {
      window.tellPlaces();
    }
  });
  return QApplication::exec();
}
