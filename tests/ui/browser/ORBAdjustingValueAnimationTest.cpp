#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "toolkit/Motion.h"
#include "ui/browser/ORBAdjustingValueAnimation.h"

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
  const auto animation = animationFrom(0.3F, 1.0);
  animation->setCurrentProgress(0.5F);
  EXPECT_EQ(value(), static_cast<float>(double{0.3F} + (1.0 - double{0.3F}) * 0.5));
  EXPECT_EQ(value(), 0.65F);
  animation->setCurrentProgress(1.0F);
  EXPECT_EQ(value(), 1.0F);
  EXPECT_EQ(m_object.property("zoomLevel").metaType(), QMetaType::fromType<float>());

  const auto back = animationFrom(1.0F, 0.30000001192092896);
  back->setCurrentProgress(0.4F);
  EXPECT_NEAR(value(), 0.72F, 1e-6);
  back->stopAnimation();
  EXPECT_NEAR(value(), 0.72F, 1e-6);
  back->setCurrentProgress(1.0F);
  EXPECT_EQ(value(), 0.3F);

  const auto still = animationFrom(0.7F, double{0.7F});
  for (const float progress : {0.0F, 0.3F, 1.0F}) {
    still->setCurrentProgress(progress);
    EXPECT_EQ(value(), 0.7F);
  }
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

TEST_F(ORBAdjustingValueAnimationTest, stopsWhereItIs) {
  const auto animation = animationFrom(0.0F, 1'000.0);
  animation->startAnimation();
  ASSERT_TRUE(QTest::qWaitFor([&] { return value() > 0; }));
  animation->stopAnimation();
  const float stopped = value();
  EXPECT_LT(stopped, 1'000.0F);
  // As long as it would have run, by the time of another.
  QObject other;
  other.setProperty("zoomLevel", 0.0F);
  const auto whole =
      ORBAdjustingValueAnimation::initWithObjectKeyPathFinalValue(&other, "zoomLevel", 1);
  whole->startAnimation();
  ASSERT_TRUE(QTest::qWaitFor([&] { return whole->state() == QAbstractAnimation::Stopped; }));
  EXPECT_EQ(value(), stopped);
}

TEST_F(ORBAdjustingValueAnimationTest, arrivesAtOnceWithReducedMotion) {
  motion::setReduced(true);
  const auto animation = animationFrom(0.3F, 1.0);
  QSignalSpy finished(animation.get(), &QAbstractAnimation::finished);
  animation->startAnimation();
  EXPECT_EQ(value(), 1.0F);
  EXPECT_EQ(finished.count(), 1);
  EXPECT_EQ(animation->state(), QAbstractAnimation::Stopped);
}

TEST_F(ORBAdjustingValueAnimationTest, thereIsNoneWithoutANumberAndNoHarmWithoutTheObject) {
  const auto make = [](QObject* object, const char* key) {
    return ORBAdjustingValueAnimation::initWithObjectKeyPathFinalValue(object, key, 1);
  };
  EXPECT_EQ(make(nullptr, "zoomLevel"), nullptr);
  EXPECT_EQ(make(&m_object, "zoomLevel"), nullptr);
  m_object.setProperty("name", "a text");
  EXPECT_EQ(make(&m_object, "name"), nullptr);
  auto object = std::make_unique<QObject>();
  object->setProperty("zoomLevel", 0.5);
  const auto animation = make(object.get(), "zoomLevel");
  object.reset();
  animation->setCurrentProgress(0.5F);
}

}  // namespace
}  // namespace snaplift
