#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include "widgets/desktop/ActivityIndicator.h"

namespace snaplift {
namespace {

TEST(ActivityIndicator, turnsWhereItIsSeenAndIsThereOnlyWhileThereIsWork) {
  QWidget window;
  auto* indicator = new ActivityIndicator(&window);
  const auto* timer = indicator->findChild<QTimer*>();
  ASSERT_TRUE(timer);
  EXPECT_EQ(timer->interval() * ActivitySpokes::count, 996) << "once a second";
  window.show();
  EXPECT_FALSE(indicator->isAnimating() || indicator->isVisible());
  indicator->startAnimation();
  EXPECT_TRUE(indicator->isAnimating() && indicator->isVisible());
  const QImage before = indicator->grab().toImage();
  EXPECT_TRUE(QTest::qWaitFor([&] { return indicator->grab().toImage() != before; }));
  window.hide();
  EXPECT_FALSE(timer->isActive());
  EXPECT_TRUE(indicator->isAnimating());
  window.show();
  EXPECT_TRUE(timer->isActive());
  indicator->stopAnimation();
  EXPECT_FALSE(timer->isActive() || indicator->isVisible());
}

}  // namespace
}  // namespace snaplift
