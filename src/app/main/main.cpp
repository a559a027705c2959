#include <QApplication>

#include "app/SLAppDelegate.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setApplicationName("Snaplift");
  QApplication::setApplicationVersion(SNAPLIFT_VERSION);
  QGuiApplication::setDesktopFileName("app.snaplift.Snaplift");
  snaplift::SLAppDelegate delegate;
  delegate.applicationDidFinishLaunching(snaplift::defaultBackupRoot());
  return QApplication::exec();
}
