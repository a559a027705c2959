#include "widgets/promises/DragSlideBack.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPropertyAnimation>

#include "widgets/desktop/Motion.h"

namespace snaplift {

DragSlideBack::DragSlideBack(const QPixmap& picture)
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput |
                           Qt::WindowDoesNotAcceptFocus | Qt::BypassWindowManagerHint),
      m_picture(picture) {
  setAttribute(Qt::WA_TranslucentBackground);
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_DeleteOnClose);
  resize(picture.deviceIndependentSize().toSize());
  if (!m_picture.mask().isNull()) {
    setMask(m_picture.mask());
  }
}

void DragSlideBack::begin(const QPixmap& picture, QPoint from, QPoint to) {
  const bool canPlaceWindows = !QGuiApplication::platformName().startsWith("wayland");
  if (motion::isReduced() || !canPlaceWindows || picture.isNull() || from == to) {
    return;
  }
  constexpr int duration = 250;  // milliseconds
  auto* window = new DragSlideBack(picture);
  window->move(from);
  window->show();
  auto* slide = new QPropertyAnimation(window, "pos", window);
  slide->setDuration(duration);
  slide->setStartValue(from);
  slide->setEndValue(to);
  slide->setEasingCurve(QEasingCurve::OutCubic);
  connect(slide, &QAbstractAnimation::finished, window, &QWidget::close);
  slide->start();
}

void DragSlideBack::paintEvent(QPaintEvent*) {
  QPainter(this).drawPixmap(0, 0, m_picture);
}

}  // namespace snaplift
