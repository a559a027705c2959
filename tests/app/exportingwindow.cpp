// The window, which exports the photos of the first backup below ROOT into FOLDER by itself, some
// of them copied to the clipboard before, and quits.
//
// usage: exportingwindow ROOT FOLDER

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QMainWindow>
#include <QMimeData>
#include <QTimer>

#include "app/SLAppDelegate.h"
#include "foundation/files/TemporaryFolder.h"
#include "widgets/desktop/SignalledEnd.h"

using namespace snaplift;

int main(int argc, char** argv) {
  removeAbandonedTemporaryFolders();
  QApplication application(argc, argv);
  if (argc != 3) {
    return 2;
  }
  const SignalledEnd signalledEnd;
  SLAppDelegate delegate;
  delegate.applicationDidFinishLaunching(argv[1]);
  auto& browser = *delegate.window()->findChild<ORBImageBrowserView*>();
  const auto& status = *delegate.window()->findChild<QLabel*>("centreText");
  bool hasBegun = false;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] {
    if (hasBegun && !status.text().startsWith("Exporting")) {
      QApplication::quit();
    } else if (!hasBegun && browser.itemCount() > 0) {
      hasBegun = true;
      delegate.imageBrowserWriteItemsAtIndexesToPasteboard(browser, {0, 1, 2, 3, 4});
      static_cast<void>(QApplication::clipboard()->mimeData()->data("text/uri-list"));
      std::vector<ImageBrowserItemPointer> items;
      for (int i = 0; i < browser.itemCount(); ++i) {
        items.push_back(browser.itemAtIndex(i));
      }
      delegate.imageBrowserExportItemsToDestination(browser, items, argv[2]);
    }
  });
  timer.start(std::chrono::milliseconds(5));
  return QApplication::exec();
}
