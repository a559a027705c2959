#include "widgets/photogrid/GridCellPainter.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace snaplift {
namespace {

constexpr double cornerRadius = 4;
constexpr int selectionWidth = 3;
constexpr double heightOfFrame = 0.8;  // of its width

// Where a photo of `size` stands in the frame: in its middle, as large as it fits, never larger
// than it is.
QRect pictureRect(const QRect& frame, QSizeF size) {
  const bool isSmaller = size.width() <= frame.width() && size.height() <= frame.height();
  const QSizeF fitted = isSmaller ? size : size.scaled(frame.size(), Qt::KeepAspectRatio);
  const QSize whole(std::max(qRound(fitted.width()), 1), std::max(qRound(fitted.height()), 1));
  return {frame.left() + (frame.width() - whole.width()) / 2,
          frame.top() + (frame.height() - whole.height()) / 2, whole.width(), whole.height()};
}

// What of a name fits. The extension goes first: what tells photos apart is the number before it.
QString fittingTitle(const QString& title, const QFontMetrics& font, int width) {
  if (font.horizontalAdvance(title) <= width) {
    return title;
  }
  const qsizetype dot = title.lastIndexOf(u'.');
  return font.elidedText(dot > 0 ? title.left(dot) : title, Qt::ElideMiddle, width);
}

// How large the sign of a badge is on a photo.
double markSide(const QRect& rect) {
  return std::clamp(rect.height() * 0.13, 9.0, 16.0);
}

}  // namespace

GridCellMetrics GridCellMetrics::forZoom(float zoom, const QFont& font, bool showsSubtitles) {
  constexpr double smallest = 32;
  constexpr double perZoom = 384;
  constexpr double largest = 960;
  GridCellMetrics metrics;
  const double width = std::clamp(smallest + perZoom * double{zoom}, 24.0, largest);
  metrics.picture = {qRound(width), qRound(width * heightOfFrame)};
  metrics.captionFont = font;
  if (font.pointSizeF() > 0) {
    metrics.captionFont.setPointSizeF(std::max(font.pointSizeF() * 0.9, 7.0));
  }
  constexpr int highestLine = 72;
  constexpr int digitsOfDate = 14;  // a date of a few letters, or with the time
  const QFontMetrics line(metrics.captionFont);
  metrics.nameHeight = std::min(line.height() + 2, highestLine);
  if (showsSubtitles && metrics.picture.width() >= digitsOfDate * line.horizontalAdvance(u'0')) {
    metrics.subtitleHeight = std::min(line.height(), highestLine);
  }
  return metrics;
}

GridCellPainter::GridCellPainter(QPainter& painter, const QColor& text,
                                 const SelectionColors& selection, const GridCellMetrics& metrics)
    : m_painter(painter), m_metrics(metrics), m_text(text), m_selection(selection) {
  m_painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  m_painter.setFont(metrics.captionFont);
}

QColor GridCellPainter::ink(double strength) const {
  QColor color = m_text;
  color.setAlphaF(static_cast<float>(strength));
  return color;
}

void GridCellPainter::draw(const Cell& cell) {
  const QRect frame(cell.rect.topLeft(), m_metrics.picture);
  const Thumbnail* thumbnail = cell.thumbnail;
  const bool hasPicture = thumbnail != nullptr && !thumbnail->picture.isNull();
  const QSizeF cameraFormat(4.0 * frame.width(), 3.0 * frame.width());
  const QRect rect = pictureRect(frame, hasPicture ? thumbnail->wholeSize() : cameraFormat);
  if (hasPicture) {
    drawPicture(rect, *thumbnail);
    if (thumbnail->isDamaged) {
      drawDamagedMark(rect);
    }
  } else {
    drawBlank(rect);
    if (thumbnail != nullptr && thumbnail->isBroken()) {
      drawBrokenMark(rect, troubleOf(*thumbnail).word);
    } else if (thumbnail != nullptr && thumbnail->isFilm) {
      drawFilm(rect);
    }
  }
  if (thumbnail != nullptr && thumbnail->isFilm) {
    drawFilmMark(rect, *thumbnail);
  } else if (cell.isLivePhoto) {
    drawLiveMark(rect);
  }
  if (cell.isSelected) {
    const double out = 1 + selectionWidth / 2.0;
    m_painter.setBrush(Qt::NoBrush);
    m_painter.setPen(QPen(m_selection.fill, selectionWidth));
    m_painter.drawRoundedRect(QRectF(rect).adjusted(-out, -out, out, out), cornerRadius,
                              cornerRadius);
  }
  drawCaption(cell);
  if (cell.hasFocus) {
    // Round the selection's frame, with a gap that is seen on any picture.
    constexpr double out = 6;
    m_painter.setBrush(Qt::NoBrush);
    m_painter.setPen(QPen(ink(0.75), 1.5));
    m_painter.drawRoundedRect(QRectF(rect).adjusted(-out, -out, out, out), cornerRadius + 2,
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

void GridCellPainter::drawBrokenMark(const QRect& rect, const QString& word) {
  const double unit = std::clamp(rect.height() * 0.16, 6.0, 28.0);
  const bool isNamed = rect.width() >= 72;
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
    m_painter.drawText(line, Qt::AlignCenter, font.elidedText(word, Qt::ElideRight, line.width()));
  }
}

// A badge in the corner that says: not all of this photo is here. Its own colours, since it lies on
// a photo of any colour.
void GridCellPainter::drawDamagedMark(const QRect& rect) {
  const double side = std::clamp(rect.height() * 0.16, 12.0, 22.0);
  QPainterPath triangle;
  triangle.moveTo(side / 2, 0);
  triangle.lineTo(side, side * 0.9);
  triangle.lineTo(0, side * 0.9);
  triangle.closeSubpath();
  triangle.translate(rect.right() - side - 4, rect.bottom() - side - 2);
  m_painter.setPen(QPen(QColor(0, 0, 0, 170), 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  m_painter.setBrush(QColor(0xff, 0xc2, 0x1a));
  m_painter.drawPath(triangle);
  const QRectF box = triangle.boundingRect();
  m_painter.setPen(QPen(Qt::black, std::max(side / 9, 1.4), Qt::SolidLine, Qt::RoundCap));
  m_painter.drawLine(QPointF(box.center().x(), box.top() + side * 0.32),
                     QPointF(box.center().x(), box.top() + side * 0.56));
  m_painter.drawPoint(QPointF(box.center().x(), box.top() + side * 0.75));
}

// A strip of film with a frame between its holes, for a film of which there is no picture.
void GridCellPainter::drawFilm(const QRect& rect) {
  const double unit = std::clamp(rect.height() * 0.16, 6.0, 28.0);
  const QPointF centre = QRectF(rect).center();
  m_painter.setBrush(Qt::NoBrush);
  m_painter.setPen(
      QPen(ink(0.5), std::max(unit / 9, 1.2), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  const auto box = [&](double x, double y, double width, double height) {
    m_painter.drawRoundedRect(QRectF(centre + QPointF(x, y) * unit, QSizeF(width, height) * unit),
                              unit / 10, unit / 10);
  };
  box(-1.5, -1, 3, 2);
  box(-0.9, -1, 1.8, 2);
  for (const double y : {-0.8, -0.2, 0.4}) {
    box(-1.35, y, 0.3, 0.4);
    box(1.05, y, 0.3, 0.4);
  }
}

// The ground of a badge in the lower left corner, no wider than the photo.
QRectF GridCellPainter::drawPill(const QRect& rect, double width, double height) {
  const QRectF pill(rect.left() + 4, rect.bottom() - height - 3, width, height);
  m_painter.setPen(Qt::NoPen);
  m_painter.setBrush(QColor(0, 0, 0, 150));
  m_painter.drawRoundedRect(pill, cornerRadius, cornerRadius);
  return pill;
}

// A badge that says: this one moves, and how long where that is known and has room.
void GridCellPainter::drawFilmMark(const QRect& rect, const Thumbnail& film) {
  const double side = markSide(rect);
  const QFontMetrics font(m_metrics.captionFont);
  QString length = film.filmLength ? filmLengthText(*film.filmLength) : QString();
  const double textWidth = length.isEmpty() ? 0 : font.horizontalAdvance(length) + 4;
  const double height = std::max(side + 4, length.isEmpty() ? 0.0 : double(font.height()));
  if (side + 8 + textWidth > rect.width() - 8) {
    length.clear();
  }
  const QRectF pill = drawPill(rect, side + 8 + (length.isEmpty() ? 0 : textWidth), height);
  drawPlaySign({pill.left() + 5 + side * 0.35, pill.center().y()}, side * 0.7);
  if (!length.isEmpty()) {
    m_painter.setPen(Qt::white);
    m_painter.drawText(pill.adjusted(side + 3, 0, -3, 0), Qt::AlignCenter, length);
  }
}

// A badge that says: a photo, and a moment of film around it.
void GridCellPainter::drawLiveMark(const QRect& rect) {
  const double side = markSide(rect) + 2;
  const QPointF centre = drawPill(rect, side + 4, side + 4).center();
  drawPlaySign(centre + QPointF(side * 0.04, 0), side * 0.4);
  m_painter.setPen(QPen(Qt::white, std::max(side / 10, 1.2)));
  m_painter.setBrush(Qt::NoBrush);
  m_painter.drawEllipse(centre, side * 0.42, side * 0.42);
}

void GridCellPainter::drawPlaySign(QPointF centre, double width) {
  const QPointF triangle[] = {centre + QPointF(-width / 2, -width * 0.57),
                              centre + QPointF(width / 2, 0),
                              centre + QPointF(-width / 2, width * 0.57)};
  m_painter.setPen(Qt::NoPen);
  m_painter.setBrush(Qt::white);
  m_painter.drawPolygon(triangle, 3);
}

void GridCellPainter::drawCaption(const Cell& cell) {
  const QRect line(cell.rect.left(),
                   cell.rect.top() + m_metrics.picture.height() + GridCellMetrics::captionGap,
                   cell.rect.width(), m_metrics.nameHeight);
  const QFontMetrics font(m_metrics.captionFont);
  constexpr int padding = 5;
  const QString text = fittingTitle(cell.title, font, line.width());
  if (cell.isSelected) {
    const int width = std::min(font.horizontalAdvance(text) + 2 * padding, line.width() + 6);
    QRectF pill(0, 0, width, line.height());
    pill.moveCenter(QRectF(line).center());
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(m_selection.fill);
    m_painter.drawRoundedRect(pill, cornerRadius, cornerRadius);
  }
  m_painter.setPen(cell.isSelected ? m_selection.text : ink(0.85));
  m_painter.drawText(line, Qt::AlignCenter | Qt::TextDontClip, text);
  if (!cell.subtitle.isEmpty()) {
    const QRect below(line.left(), line.bottom() + 1, line.width(), m_metrics.subtitleHeight);
    m_painter.setPen(ink(0.65));
    m_painter.drawText(below, Qt::AlignCenter | Qt::TextDontClip,
                       font.elidedText(cell.subtitle, Qt::ElideRight, below.width()));
  }
}

void GridCellPainter::drawBand(const QRect& band) {
  QColor fill = m_selection.fill;
  fill.setAlphaF(0.18F);
  m_painter.setPen(QPen(m_selection.fill, 1));
  m_painter.setBrush(fill);
  m_painter.drawRect(QRectF(band).adjusted(0.5, 0.5, -0.5, -0.5));
}

}  // namespace snaplift
