#pragma once

#include <QAbstractAnimation>
#include <QByteArray>
#include <QPointer>
#include <memory>

namespace snaplift {

// Moves a numeric property of an object, known to Qt's property system by name, from its value at
// the making of the animation to a final one: linearly, within 0.25 seconds, on the event loop of
// the thread that starts it. Where the desktop wants little motion it arrives at once.
//
// The object is not owned. If it goes first, the rest is not written. Used once.
class ORBAdjustingValueAnimation : public QAbstractAnimation {
  Q_OBJECT

public:
  static constexpr int durationInMilliseconds = 250;

  // Nothing where `object` is null or its property is not a number.
  static std::unique_ptr<ORBAdjustingValueAnimation> initWithObjectKeyPathFinalValue(
      QObject* object, const QByteArray& keyPath, double finalValue);

  // Returns at once.
  void startAnimation();
  // Leaves the property at the value that was written last.
  void stopAnimation() { stop(); }
  // Writes the value for `progress`, 0 to 1, narrowed to float.
  void setCurrentProgress(float progress);
  float currentProgress() const { return m_currentProgress; }

  int duration() const override { return durationInMilliseconds; }

protected:
  void updateCurrentTime(int milliseconds) override;

private:
  ORBAdjustingValueAnimation(QObject* object, QByteArray keyPath, double startValue,
                             double targetValue);

  QPointer<QObject> m_targetObject;
  QByteArray m_targetKeyPath;
  double m_startValue;
  double m_targetValue;
  float m_currentProgress = 0;
};

}  // namespace snaplift
