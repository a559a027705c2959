#include <QImage>
#include <QPainter>
#include <QTest>
#include <cmath>

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

// Twelve spokes, ten times as large, so that their middles are plain; the fainter, the longer ago
// each was the leading one, which goes round clockwise from the top.
TEST(ActivitySpokes, fadeBehindTheLeadingOne) {
  for (const int step : {12, 15}) {
    QImage image(200, 200, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.scale(10, 10);
    ActivitySpokes().draw(painter, QPointF(10, 10), step, Qt::black);
    for (int age = 0; age < 12; ++age) {
      const double angle = (step - age) * M_PI / 6;
      const QPointF middle(100 + 60 * std::sin(angle), 100 - 60 * std::cos(angle));
      EXPECT_NEAR(image.pixelColor(middle.toPoint()).red(), 255 * 0.25 * std::sqrt(age), 2) << age;
    }
  }
}

}  // namespace
}  // namespace snaplift
