#include "widgets/desktop/ActivityIndicator.h"

#include <QPainter>
#include <chrono>
#include <cmath>
#include <numbers>

namespace snaplift {
namespace {

constexpr int side = 16;
constexpr std::chrono::milliseconds stepTime{1000 / ActivitySpokes::count};

}  // namespace

void ActivitySpokes::draw(QPainter& painter, const QPointF& centre, int step,
                          const QColor& color) const {
  constexpr double turn = 2 * std::numbers::pi;
  constexpr double up =
      turn * 3 / 4;  // y grows downward: this angle points up, and grows clockwise
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  auto angle = static_cast<float>(up + turn / count * (step % count));
  for (int i = 0; i < count; ++i) {
    QColor faded = color;
    faded.setAlphaF(static_cast<float>(1 - 0.25 * std::sqrt(i)));
    painter.setPen(QPen(faded, lineWidth, Qt::SolidLine, Qt::RoundCap));
    const QPointF direction(std::cos(angle), std::sin(angle));
    painter.drawLine(centre + innerRadius * direction, centre + outerRadius * direction);
    angle = static_cast<float>(angle - turn / count);
  }
  painter.restore();
}

ActivityIndicator::ActivityIndicator(QWidget* parent) : QWidget(parent) {
  QSizePolicy policy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  policy.setRetainSizeWhenHidden(true);
  setSizePolicy(policy);
  hide();
  m_timer.setInterval(stepTime);
  connect(&m_timer, &QTimer::timeout, this, [this] {
    m_step = (m_step + 1) % ActivitySpokes::count;
    update();
  });
}

void ActivityIndicator::startAnimation() {
  show();
}

void ActivityIndicator::stopAnimation() {
  hide();
}

QSize ActivityIndicator::sizeHint() const {
  return {side, side};
}

void ActivityIndicator::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  ActivitySpokes().draw(painter, QRectF(rect()).center(), m_step,
                        palette().color(foregroundRole()));
}

void ActivityIndicator::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  m_step = 0;
  m_timer.start();
}

void ActivityIndicator::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  m_timer.stop();
}

}  // namespace snaplift
