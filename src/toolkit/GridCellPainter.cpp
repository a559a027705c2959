#include "toolkit/GridCellPainter.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace snaplift {
namespace {

constexpr int captionGap = 6;
constexpr double cornerRadius = 4;
constexpr int selectionWidth = 3;

// Where a photo of `size` stands in the square: on its caption, as large as it fits, never larger
// than it is.
QRect pictureRect(const QRect& square, QSizeF size) {
  const bool isSmaller = size.width() <= square.width() && size.height() <= square.height();
  const QSizeF fitted = isSmaller ? size : size.scaled(square.size(), Qt::KeepAspectRatio);
  const QSize whole(std::max(qRound(fitted.width()), 1), std::max(qRound(fitted.height()), 1));
  return {square.left() + (square.width() - whole.width()) / 2,
          square.top() + square.height() - whole.height(), whole.width(), whole.height()};
}

// What of a name fits. The extension goes first: what tells photos apart is the number before it.
QString fittingTitle(const QString& title, const QFontMetrics& font, int width) {
  if (font.horizontalAdvance(title) <= width) {
    return title;
  }
  const qsizetype dot = title.lastIndexOf(u'.');
  return font.elidedText(dot > 0 ? title.left(dot) : title, Qt::ElideMiddle, width);
}

}  // namespace

GridCellMetrics GridCellMetrics::forZoom(float zoom, const QFont& font) {
  constexpr double smallest = 32;
  constexpr double perZoom = 384;
  constexpr double largest = 960;
  GridCellMetrics metrics;
  metrics.side = qRound(std::clamp(smallest + perZoom * double{zoom}, 24.0, largest));
  metrics.captionFont = font;
  if (font.pointSizeF() > 0) {
    metrics.captionFont.setPointSizeF(std::max(font.pointSizeF() * 0.9, 7.0));
  }
  metrics.captionHeight = std::min(QFontMetrics(metrics.captionFont).height() + 2 + captionGap, 80);
  return metrics;
}

GridCellPainter::GridCellPainter(QPainter& painter, const QPalette& palette,
                                 QPalette::ColorGroup group, const GridCellMetrics& metrics)
    : m_painter(painter),
      m_metrics(metrics),
      m_text(palette.color(group, QPalette::Text)),
      m_highlight(palette.color(group, QPalette::Highlight)),
      m_highlightedText(palette.color(group, QPalette::HighlightedText)) {
  m_painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  m_painter.setFont(metrics.captionFont);
}

QColor GridCellPainter::ink(double strength) const {
  QColor color = m_text;
  color.setAlphaF(static_cast<float>(strength));
  return color;
}

void GridCellPainter::draw(const Cell& cell) {
  const QRect square(cell.rect.topLeft(), QSize(m_metrics.side, m_metrics.side));
  const Thumbnail* thumbnail = cell.thumbnail;
  const bool hasPicture = thumbnail != nullptr && !thumbnail->picture.isNull();
  const QSizeF cameraFormat(4.0 * square.width(), 3.0 * square.width());
  const QRect rect = pictureRect(square, hasPicture ? thumbnail->photoSize : cameraFormat);
  if (hasPicture) {
    drawPicture(rect, *thumbnail);
  } else {
    drawBlank(rect);
    if (thumbnail != nullptr && thumbnail->isBroken()) {
      drawBrokenMark(rect);
    }
  }
  if (cell.isSelected) {
    const double out = 1 + selectionWidth / 2.0;
    m_painter.setBrush(Qt::NoBrush);
    m_painter.setPen(QPen(m_highlight, selectionWidth));
    m_painter.drawRoundedRect(QRectF(rect).adjusted(-out, -out, out, out), cornerRadius,
                              cornerRadius);
  }
  drawCaption(cell);
  if (cell.hasFocus) {
    m_painter.setBrush(Qt::NoBrush);
    m_painter.setPen(QPen(ink(0.55), 1));
    m_painter.drawRoundedRect(QRectF(cell.rect).adjusted(-5.5, -5.5, 5.5, 2.5), cornerRadius + 2,
                              cornerRadius + 2);
  }
}

void GridCellPainter::drawPicture(const QRect& rect, const Thumbnail& thumbnail) {
  m_painter.drawImage(rect, thumbnail.picture);
  // A sky may be as white as the page.
  m_painter.setBrush(Qt::NoBrush);
  m_painter.setPen(QPen(ink(0.15), 1));
  m_painter.drawRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5));
}

void GridCellPainter::drawBlank(const QRect& rect) {
  m_painter.setPen(Qt::NoPen);
  m_painter.setBrush(ink(0.07));
  m_painter.drawRoundedRect(rect, cornerRadius, cornerRadius);
}

void GridCellPainter::drawBrokenMark(const QRect& rect) {
  const double unit = std::clamp(rect.height() * 0.16, 6.0, 28.0);
  const bool isNamed = rect.width() >= 104;
  const QPointF centre = QRectF(rect).center() - QPointF(0, isNamed ? unit * 0.6 : 0);
  m_painter.setBrush(Qt::NoBrush);
  m_painter.setPen(
      QPen(ink(0.5), std::max(unit / 9, 1.2), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  // A photo torn in two along a zigzag.
  const QPointF tear[] = {{0.25, -0.9}, {-0.2, -0.3}, {0.25, 0.2}, {-0.2, 0.9}};
  for (const double half : {-1.0, 1.0}) {
    QPainterPath path;
    const QPointF shift(half * 0.14, 0);
    path.moveTo(centre + (tear[0] + shift) * unit);
    for (const QPointF& point : tear) {
      path.lineTo(centre + (point + shift) * unit);
    }
    path.lineTo(centre + QPointF(half * 1.35, 0.9) * unit);
    path.lineTo(centre + QPointF(half * 1.35, -0.9) * unit);
    path.closeSubpath();
    m_painter.drawPath(path);
  }
  if (isNamed) {
    const QFontMetrics font(m_metrics.captionFont);
    const QRect line(rect.left() + 4, qRound(centre.y() + unit * 1.5), rect.width() - 8,
                     font.height());
    m_painter.setPen(ink(0.65));
    m_painter.drawText(line, Qt::AlignCenter,
                       font.elidedText("Cannot be shown", Qt::ElideRight, line.width()));
  }
}

void GridCellPainter::drawCaption(const Cell& cell) {
  const QRect line = cell.rect.adjusted(0, m_metrics.side + captionGap, 0, 0);
  const QFontMetrics font(m_metrics.captionFont);
  constexpr int padding = 5;
  const QString text = fittingTitle(cell.title, font, line.width());
  if (cell.isSelected) {
    const int width = std::min(font.horizontalAdvance(text) + 2 * padding, line.width() + 6);
    QRectF pill(0, 0, width, line.height());
    pill.moveCenter(QRectF(line).center());
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(m_highlight);
    m_painter.drawRoundedRect(pill, cornerRadius, cornerRadius);
  }
  m_painter.setPen(cell.isSelected ? m_highlightedText : ink(0.85));
  m_painter.drawText(line, Qt::AlignCenter | Qt::TextDontClip, text);
}

void GridCellPainter::drawBand(const QRect& band) {
  QColor fill = m_highlight;
  fill.setAlphaF(0.18F);
  m_painter.setPen(QPen(m_highlight, 1));
  m_painter.setBrush(fill);
  m_painter.drawRect(QRectF(band).adjusted(0.5, 0.5, -0.5, -0.5));
}

}  // namespace snaplift
