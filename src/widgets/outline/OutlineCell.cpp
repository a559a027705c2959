#include "widgets/outline/OutlineCell.h"

#include <QFontMetricsF>
#include <QPainter>
#include <cmath>

#include "widgets/desktop/PlainText.h"

namespace snaplift {

void OutlineCell::setObjectValue(const QVariant& value) {
  m_objectValue = value;
  // A line break would be drawn as a box.
  const QString text = plainText::shortened(value.toString()).simplified();
  if (text != m_text) {
    m_text = text;
    m_cellSize.reset();
  }
}

void OutlineCell::setFont(const QFont& font) {
  if (font != m_font) {
    m_font = font;
    m_cellSize.reset();
  }
}

QSizeF OutlineCell::cellSize() const {
  if (!m_cellSize) {
    const QFontMetricsF metrics(m_font);
    m_cellSize = QSizeF(std::ceil(metrics.horizontalAdvance(m_text)), std::ceil(metrics.height()));
  }
  return *m_cellSize;
}

QSizeF OutlineCell::cellSizeForBounds(const QRectF& bounds) const {
  return cellSize().boundedTo(bounds.size());
}

void OutlineCell::drawWithFrame(QPainter& painter, const QRectF& frame,
                                Qt::LayoutDirection direction) {
  if (frame.width() <= 0) {
    return;
  }
  painter.setFont(m_font);
  painter.setPen(m_textColor);
  const bool fits = cellSize().width() <= frame.width();
  const QString shown =
      fits ? m_text : QFontMetricsF(m_font).elidedText(m_text, Qt::ElideRight, frame.width());
  // The text runs in its own direction, so that an ellipsis stands where the text goes on.
  painter.setLayoutDirection(Qt::LayoutDirectionAuto);
  const Qt::Alignment side = direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
  const auto place = static_cast<int>((side | Qt::AlignAbsolute | Qt::AlignVCenter).toInt());
  painter.drawText(frame, place | Qt::TextSingleLine, shown);
}

}  // namespace snaplift
