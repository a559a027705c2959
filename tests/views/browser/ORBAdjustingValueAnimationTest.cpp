#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "views/browser/ORBAdjustingValueAnimation.h"
#include "widgets/desktop/Motion.h"

namespace snaplift {
namespace {

class ORBAdjustingValueAnimationTest : public testing::Test {
protected:
  ~ORBAdjustingValueAnimationTest() override { motion::setReduced(false); }

  std::unique_ptr<ORBAdjustingValueAnimation> animationFrom(float start, double target) {
    m_object.setProperty("zoomLevel", start);
    return ORBAdjustingValueAnimation::initWithObjectKeyPathFinalValue(&m_object, "zoomLevel",
                                                                       target);
  }
  float value() const { return m_object.property("zoomLevel").toFloat(); }

  QObject m_object;
};

TEST_F(ORBAdjustingValueAnimationTest, progressIsLinearAndNarrowedToFloat) {
  const struct {
    float start;
    double target;
    float progress, value;
  } cases[] = {{0.3F, 1.0, 0.5F, 0.65F},
               {0.3F, 1.0, 1.0F, 1.0F},
               {1.0F, 0.30000001192092896, 0.4F, 0.72F},
               {1.0F, 0.30000001192092896, 1.0F, 0.3F},
               {0.7F, double{0.7F}, 0.3F, 0.7F}};
  for (const auto& each : cases) {
    const auto animation = animationFrom(each.start, each.target);
    animation->setCurrentProgress(each.progress);
    EXPECT_FLOAT_EQ(value(), each.value);
    animation->stopAnimation();
    EXPECT_FLOAT_EQ(value(), each.value);
  }
  EXPECT_EQ(m_object.property("zoomLevel").metaType(), QMetaType::fromType<float>());
}

TEST_F(ORBAdjustingValueAnimationTest, runsForAQuarterOfASecondAndStartsFromTheValueAtItsMaking) {
  const auto animation = animationFrom(0.3F, 1.0);
  EXPECT_EQ(animation->duration(), 250);
  m_object.setProperty("zoomLevel", 0.9F);
  QSignalSpy finished(animation.get(), &QAbstractAnimation::finished);
  animation->startAnimation();
  EXPECT_LT(value(), 0.9F);
  EXPECT_EQ(finished.count(), 0);
  ASSERT_TRUE(QTest::qWaitFor([&] { return value() > 0.3F; }));
  ASSERT_TRUE(QTest::qWaitFor([&] { return finished.count() == 1; }));
  EXPECT_EQ(value(), 1.0F);
}

TEST_F(ORBAdjustingValueAnimationTest, arrivesAtOnceWithReducedMotion) {
  motion::setReduced(true);
  const auto animation = animationFrom(0.3F, 1.0);
  QSignalSpy finished(animation.get(), &QAbstractAnimation::finished);
  animation->startAnimation();
  EXPECT_EQ(value(), 1.0F);
  EXPECT_EQ(finished.count(), 1);
}

TEST_F(ORBAdjustingValueAnimationTest, thereIsNoneWithoutANumberAndNoHarmWithoutTheObject) {
  const auto make = [](QObject* object) {
    return ORBAdjustingValueAnimation::initWithObjectKeyPathFinalValue(object, "zoomLevel", 1);
  };
  EXPECT_EQ(make(nullptr), nullptr);
  EXPECT_EQ(make(&m_object), nullptr);
  m_object.setProperty("zoomLevel", "a text");
  EXPECT_EQ(make(&m_object), nullptr);
  auto object = std::make_unique<QObject>();
  object->setProperty("zoomLevel", 0.5);
  const auto animation = make(object.get());
  object.reset();
  animation->setCurrentProgress(0.5F);
}

}  // namespace
}  // namespace snaplift
