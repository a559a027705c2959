#include "widgets/photogrid/GridHeader.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <algorithm>

#include "widgets/desktop/SelectionColors.h"
#include "widgets/photogrid/GridLayout.h"

namespace snaplift {
namespace {

constexpr int padding = 8;  // above and below the text

QFont titleFont(QFont font) {
  if (font.pointSizeF() > 0) {
    font.setPointSizeF(font.pointSizeF() * 1.1);
  }
  font.setWeight(QFont::DemiBold);
  return font;
}

}  // namespace

int gridHeaderHeight(const QFont& font) {
  return std::min(QFontMetrics(titleFont(font)).height() + 2 * padding,
                  GridLayout::maxHeaderHeight);
}

void drawGridHeader(QPainter& painter, const GridHeader& header, const QFont& font,
                    const QPalette& palette) {
  const QColor text = palette.color(QPalette::Text);
  const QColor ground = palette.color(QPalette::Base);
  painter.fillRect(header.rect, ground);
  if (header.isHeld) {
    painter.fillRect(QRect(header.rect.bottomLeft(), QSize(header.rect.width(), 1)),
                     blended(text, ground, 0.18));
  }
  // A title that is too long gives way to the number.
  const QRect line = header.rect.adjusted(header.margin, 0, -header.margin, 0);
  const QFont large = titleFont(font);
  const QFontMetrics largeMetrics(large);
  const int gap = largeMetrics.averageCharWidth() * 3 / 2;
  const int countWidth = QFontMetrics(font).horizontalAdvance(header.count);
  const QString title = largeMetrics.elidedText(header.title, Qt::ElideRight,
                                                std::max(line.width() - countWidth - gap, 0));
  const int titleWidth = largeMetrics.horizontalAdvance(title);

  // Both on one base line, from the side where reading begins.
  const int baseLine =
      line.top() + (line.height() - largeMetrics.height()) / 2 + largeMetrics.ascent();
  const auto leftOf = [&](int from, int width) {
    return header.isMirrored ? line.right() + 1 - from - width : line.left() + from;
  };
  painter.setFont(large);
  painter.setPen(text);
  painter.drawText(leftOf(0, titleWidth), baseLine, title);
  painter.setFont(font);
  painter.setPen(blended(text, ground, 0.65));
  painter.drawText(leftOf(titleWidth + gap, countWidth), baseLine, header.count);
}

}  // namespace snaplift
