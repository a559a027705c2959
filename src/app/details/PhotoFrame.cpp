#include "app/details/PhotoFrame.h"

#include <QPainter>

namespace snaplift {

PhotoFrame::PhotoFrame(QWidget* parent) : QWidget(parent) {
  constexpr int height = 180;
  setFixedHeight(height);
}

void PhotoFrame::setPicture(const QImage& picture) {
  m_picture = picture;
  update();
}

void PhotoFrame::paintEvent(QPaintEvent*) {
  if (m_picture.isNull()) {
    return;
  }
  const QSizeF own = QSizeF(m_picture.size()) / devicePixelRatio();
  const bool fits = own.width() <= width() && own.height() <= height();
  QRectF place(QPointF(), fits ? own : own.scaled(QSizeF(size()), Qt::KeepAspectRatio));
  place.moveCenter(QRectF(rect()).center());
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(place, m_picture);
}

}  // namespace snaplift
