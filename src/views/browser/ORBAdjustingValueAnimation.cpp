#include "views/browser/ORBAdjustingValueAnimation.h"

#include <QVariant>
#include <utility>

#include "widgets/desktop/Motion.h"

namespace snaplift {

std::unique_ptr<ORBAdjustingValueAnimation>
ORBAdjustingValueAnimation::initWithObjectKeyPathFinalValue(QObject* object,
                                                            const QByteArray& keyPath,
                                                            double finalValue) {
  bool isNumber = false;
  const float startValue =
      object != nullptr ? object->property(keyPath.constData()).toFloat(&isNumber) : 0;
  return isNumber ? std::unique_ptr<ORBAdjustingValueAnimation>(new ORBAdjustingValueAnimation(
                        object, keyPath, double{startValue}, finalValue))
                  : nullptr;
}

ORBAdjustingValueAnimation::ORBAdjustingValueAnimation(QObject* object, QByteArray keyPath,
                                                       double startValue, double targetValue)
    : m_targetObject(object),
      m_targetKeyPath(std::move(keyPath)),
      m_startValue(startValue),
      m_targetValue(targetValue) {}

void ORBAdjustingValueAnimation::startAnimation() {
  start();
  if (motion::isReduced()) {
    setCurrentTime(duration());
  }
}

void ORBAdjustingValueAnimation::setCurrentProgress(float progress) {
  m_currentProgress = progress;
  const double value = m_startValue + (m_targetValue - m_startValue) * double{progress};
  if (m_targetObject) {
    m_targetObject->setProperty(m_targetKeyPath.constData(), static_cast<float>(value));
  }
}

void ORBAdjustingValueAnimation::updateCurrentTime(int milliseconds) {
  setCurrentProgress(static_cast<float>(milliseconds) / durationInMilliseconds);
}

}  // namespace snaplift
