#include "views/sourcelist/SourceListGeometry.h"

#include <algorithm>

namespace snaplift::sourceListGeometry {
namespace {

double centred(double start, double length, double part) {
  return start + length / 2 - part / 2;
}

}  // namespace

QSizeF fittedIconSize(const QSizeF& size, double rowHeight) {
  return size.height() > rowHeight ? QSizeF(size.width() * (rowHeight / size.height()), rowHeight)
                                   : size;
}

QRectF groupTitleFrame(const QRectF& row, const QRectF& own, bool alwaysExpanded, double height) {
  const double x = alwaysExpanded ? alwaysExpandedGroupX : own.x();
  return QRectF(x, centred(own.y(), own.height(), height), row.width() - x, height);
}

QRectF titleFrame(const QRectF& row, double levelInset, double iconWidth, bool hasIcon,
                  double badgeWidth, double height) {
  const double x = levelInset + titleInset + (hasIcon ? iconWidth + iconGap : 0);
  return QRectF(x, centred(row.y(), row.height(), height),
                row.width() - (badgeWidth + badgeMargin) - x, height);
}

QRectF iconBox(const QRectF& title, const QSizeF& iconSize) {
  return QRectF(QPointF(title.x() - iconSize.width() - iconToTitleGap,
                        centred(title.y(), title.height(), iconSize.height())),
                iconSize);
}

QRectF iconFrame(const QRectF& box, const QSizeF& picture) {
  if (box.width() <= picture.width() && box.height() <= picture.height()) {
    return box;
  }
  return QRectF(QPointF(centred(box.x(), box.width(), picture.width()),
                        centred(box.y(), box.height(), picture.height())),
                picture);
}

QSizeF badgeSize(double textWidth) {
  return QSizeF(std::max(badgeMinimumWidth, textWidth + badgeTextMargin), badgeHeight);
}

QRectF badgeFrame(const QRectF& row, const QSizeF& badge) {
  return QRectF(QPointF(row.x() + row.width() - badge.width() - badgeMargin,
                        centred(row.y(), row.height(), badge.height())),
                badge);
}

QRectF rightSideIconFrame(const QRectF& row) {
  constexpr double distanceFromRight = 26;
  return QRectF(row.x() + row.width() - distanceFromRight,
                centred(row.y(), row.height(), rightSideIconSide), rightSideIconSide,
                rightSideIconSide);
}

QPointF spinnerCentre(const QRectF& row) {
  constexpr double distanceFromRight = 17;
  constexpr double distanceFromBottom = 10;
  return QPointF(row.x() + row.width() - distanceFromRight,
                 row.y() + row.height() - distanceFromBottom);
}

}  // namespace snaplift::sourceListGeometry
