#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace snaplift {

// Where the parts of a sidebar's row are: arithmetic without a view. Everything is in
// device-independent pixels, y downward, laid out left to right. `row` is the row's rectangle.
namespace sourceListGeometry {

inline constexpr double titleInset = 18;           // of a level 0 title, before its icon
inline constexpr double alwaysExpandedGroupX = 7;  // a group without a triangle
inline constexpr double iconGap = 4;               // more than the icon's width moves a title
inline constexpr double iconToTitleGap = 2;
inline constexpr double badgeMargin = 5;  // between the badge and the row's right edge
inline constexpr double badgeHeight = 14;
inline constexpr double badgeMinimumWidth = 22;
inline constexpr double badgeTextMargin = 10;  // both sides together
inline constexpr double badgeCornerRadius = 7;
inline constexpr int badgeFontPixelSize = 11;
inline constexpr double defaultIconSide = 16;
inline constexpr double rightSideIconSide = 18;  // and the badge size of a row that has one

// The icon size that keeps the proportions of `size` and is no higher than a row.
QSizeF fittedIconSize(const QSizeF& size, double rowHeight);

// The title of a group. `own` is where the outline itself would put it, `height` the title's.
QRectF groupTitleFrame(const QRectF& row, const QRectF& own, bool alwaysExpanded, double height);

// The title of any other row. `iconWidth` is 0 for a row without an icon, `badgeWidth` likewise.
QRectF titleFrame(const QRectF& row, double levelInset, double iconWidth, bool hasIcon,
                  double badgeWidth, double height);

// The box that an icon is drawn in, left of the title.
QRectF iconBox(const QRectF& title, const QSizeF& iconSize);
// A picture that is smaller than the box in width or height is drawn as it is, in the box's middle,
// and may stick out of it; any other is scaled to the box.
QRectF iconFrame(const QRectF& box, const QSizeF& picture);

QSizeF badgeSize(double textWidth);
QRectF badgeFrame(const QRectF& row, const QSizeF& badge);

QRectF rightSideIconFrame(const QRectF& row);
QPointF spinnerCentre(const QRectF& row);

}  // namespace sourceListGeometry
}  // namespace snaplift
