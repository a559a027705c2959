#include "views/sourcelist/SourceListDrawing.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QPixmapCache>

#include "views/sourcelist/SourceListGeometry.h"

namespace snaplift::sourceListDrawing {
namespace {

constexpr QColor hiddenWindowBadgeFill(180, 180, 180);
constexpr QColor unfocusedSelectedText(153, 169, 203);
constexpr QColor hiddenWindowSelectedText(170, 170, 170);

// Painting reduces by taking the nearest few pixels; below a half it would skip some.
QPixmap reduced(const QPixmap& picture, const QSize& size) {
  if (picture.width() <= 2 * size.width() && picture.height() <= 2 * size.height()) {
    return picture;
  }
  const QString key = QStringLiteral("sourcelist/%1/%2x%3")
                          .arg(picture.cacheKey())
                          .arg(size.width())
                          .arg(size.height());
  QPixmap small;
  if (!QPixmapCache::find(key, &small)) {
    small = picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QPixmapCache::insert(key, small);
  }
  return small;
}

}  // namespace

BadgeColors badgeColors(const BadgeState& state, const QColor& fill, const QColor& text,
                        const QColor& accent) {
  if (state.selected) {
    const QColor digits = !state.mainWindowVisible ? hiddenWindowSelectedText
                          : state.active           ? accent
                                                   : unfocusedSelectedText;
    return {Qt::white, digits};
  }
  if (!state.mainWindowVisible) {
    return {hiddenWindowBadgeFill, Qt::white};
  }
  return {fill.isValid() ? fill : defaultBadgeFill, text.isValid() ? text : QColor(Qt::white)};
}

QFont badgeFont() {
  QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
  font.setPixelSize(sourceListGeometry::badgeFontPixelSize);
  font.setBold(true);
  return font;
}

double badgeTextWidth(const QString& text) {
  return QFontMetricsF(badgeFont()).horizontalAdvance(text);
}

void drawBadge(QPainter& painter, const QRectF& frame, const QString& text,
               const BadgeColors& colors) {
  constexpr double radius = sourceListGeometry::badgeCornerRadius;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(colors.fill);
  painter.drawRoundedRect(frame, radius, radius);
  painter.setFont(badgeFont());
  painter.setPen(colors.text);
  painter.drawText(frame, Qt::AlignCenter | Qt::TextSingleLine, text);
  painter.restore();
}

void drawPicture(QPainter& painter, const QRectF& frame, const QPixmap& picture) {
  const double scale = painter.device()->devicePixelRatioF();
  const QPixmap source = reduced(picture, (frame.size() * scale).toSize());
  painter.save();
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawPixmap(frame, source, QRectF(QPointF(0, 0), QSizeF(source.size())));
  painter.restore();
}

}  // namespace snaplift::sourceListDrawing
