#include "bench/ViewMain.h"

#include <QApplication>
#include <QStyleFactory>

// The main of a benchmark of views: no display, and the style that Qt itself paints.
int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  return snaplift::bench::runViewBench(argc, argv);
}
