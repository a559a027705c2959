#include <QApplication>
#include <QMainWindow>
#include <QTest>

#include "Gallery.h"
#include "app/SLAppDelegate.h"
#include "toolkit/MainThread.h"

namespace snaplift::gallery {
namespace {

// Long enough for a slow machine to decode the photos that are seen.
constexpr int patienceInMilliseconds = 60000;

void paintStart(const QString& folder, const QString& name, const QPalette& palette) {
  QApplication::setPalette(palette);
  mainThread::resume();
  SLAppDelegate delegate;
  delegate.applicationDidFinishLaunching(defaultBackupRoot());
  const auto* browser = delegate.window()->findChild<ORBImageBrowserView*>();
  const auto isComplete = [browser] {
    return browser->itemCount() > 0 && !browser->isLoadingThumbnails();
  };
  if (!QTest::qWaitFor(isComplete, patienceInMilliseconds)) {
    qWarning("the picture is taken before all photos are there");
  }
  save(*delegate.window(), folder, name);
}

}  // namespace

void paintWindow(const QString& folder) {
  paintStart(folder, "window-light", lightPalette());
  paintStart(folder, "window-dark", darkPalette());
}

}  // namespace snaplift::gallery
