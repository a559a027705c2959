#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include "toolkit/ActivityIndicator.h"

namespace snaplift {
namespace {

bool isBlank(ActivityIndicator& indicator) {
  const QImage image = indicator.grab().toImage();
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) != image.pixel(0, 0)) {
        return false;
      }
    }
  }
  return true;
}

TEST(ActivityIndicator, isSeenWhileItTurns) {
  ActivityIndicator indicator;
  indicator.resize(indicator.sizeHint());
  indicator.show();
  EXPECT_TRUE(isBlank(indicator));
  indicator.startAnimation();
  EXPECT_FALSE(isBlank(indicator));
  const QImage before = indicator.grab().toImage();
  EXPECT_TRUE(QTest::qWaitFor([&] { return indicator.grab().toImage() != before; }));
  indicator.stopAnimation();
  EXPECT_TRUE(isBlank(indicator));
}

TEST(ActivityIndicator, standsStillWhileHidden) {
  ActivityIndicator indicator;
  const auto* timer = indicator.findChild<QTimer*>();
  ASSERT_TRUE(timer);
  indicator.startAnimation();
  EXPECT_FALSE(timer->isActive());
  indicator.show();
  EXPECT_TRUE(timer->isActive());
  indicator.hide();
  EXPECT_FALSE(timer->isActive());
  EXPECT_TRUE(indicator.isAnimating());
  indicator.show();
  EXPECT_TRUE(timer->isActive());
  indicator.stopAnimation();
  EXPECT_FALSE(timer->isActive());
}

}  // namespace
}  // namespace snaplift
