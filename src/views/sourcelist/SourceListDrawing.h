#pragma once

#include <QColor>
#include <QFont>
#include <QPixmap>
#include <QRectF>
#include <QString>

class QPainter;

namespace snaplift {

// What a sidebar paints over its rows, without the view: icons and number badges.
namespace sourceListDrawing {

inline constexpr QColor defaultBadgeFill(152, 168, 202);

// What the colours of a badge depend on.
struct BadgeState {
  bool selected = false;
  bool mainWindowVisible = false;
  bool active = false;  // the sidebar has the keyboard, or the row is being edited
};

struct BadgeColors {
  QColor fill;
  QColor text;
  friend bool operator==(const BadgeColors&, const BadgeColors&) = default;
};

// `fill` and `text` are the row's own wishes, invalid where it has none; `accent` is the platform's
// colour for what has the keyboard.
BadgeColors badgeColors(const BadgeState& state, const QColor& fill, const QColor& text,
                        const QColor& accent);

QFont badgeFont();
double badgeTextWidth(const QString& text);
void drawBadge(QPainter& painter, const QRectF& frame, const QString& text,
               const BadgeColors& colors);

// The whole picture, scaled into `frame`. Fine at every scale factor: a picture much larger than
// the frame is reduced properly once and kept.
void drawPicture(QPainter& painter, const QRectF& frame, const QPixmap& picture);

}  // namespace sourceListDrawing
}  // namespace snaplift
