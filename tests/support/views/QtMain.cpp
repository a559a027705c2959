#include <QApplication>
#include <QStyleFactory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The main of every program that tests views: one application object for all its cases, with
// nothing taken over from the desktop that it happens to run on. Listing the cases makes none, so
// that a build machine without a display can list them.
int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  if (testing::GTEST_FLAG(list_tests)) {
    return RUN_ALL_TESTS();
  }
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  qunsetenv("QT_STYLE_OVERRIDE");
  qputenv("QT_SCALE_FACTOR", "1");
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  return RUN_ALL_TESTS();
}
