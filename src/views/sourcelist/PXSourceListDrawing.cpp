#include <QApplication>
#include <QPainter>

#include "views/sourcelist/PXSourceList.h"
#include "views/sourcelist/SourceListGeometry.h"

// Where the parts of a row are, and how they are painted.

namespace snaplift {
namespace {

namespace geometry = sourceListGeometry;

// The window that the user works in, a dialog's being the one that it belongs to. There is none
// while another application has the keyboard.
bool mainWindowIsVisible() {
  const QWidget* window = QApplication::activeWindow();
  while (window && window->parentWidget()) {
    window = window->parentWidget()->window();
  }
  return window && window->isVisible();
}

}  // namespace

QRectF PXSourceList::frameOfOutlineCellAtRow(int row) {
  if (isGroupAlwaysExpanded(itemAtRow(row))) {
    return {};
  }
  QRectF frame = OutlineView::frameOfOutlineCellAtRow(row);
  const int level = levelForRow(row);
  if (level > 0) {
    frame.moveLeft(level * indentationPerLevel());
  }
  return frame;
}

QRectF PXSourceList::frameOfCellAtColumnRow(int column, int row) {
  const QRectF own = OutlineView::frameOfCellAtColumnRow(column, row);
  const QRectF rowRect = rectOfRow(row);
  const OutlineItem item = itemAtRow(row);
  const OutlineCell& cell = preparedCellAtColumnRow(column, row);
  const bool natural =
      cell.type() == OutlineCell::Type::Text || cell.type() == OutlineCell::Type::Image;
  const double height = (natural ? cell.cellSize() : cell.cellSizeForBounds(own)).height();
  if (isGroupItem(item)) {
    return geometry::groupTitleFrame(rowRect, own, isGroupAlwaysExpanded(item), height);
  }
  return geometry::titleFrame(rowRect, levelForRow(row) * indentationPerLevel(), m_iconSize.width(),
                              itemHasIcon(item), sizeOfBadgeAtRow(row).width(), height);
}

QSizeF PXSourceList::sizeOfBadgeAtRow(int row) {
  const OutlineItem item = itemAtRow(row);
  if (!itemHasBadge(item)) {
    return QSizeF(0, 0);
  }
  const QString text = QString::number(badgeValueForItem(item));
  return geometry::badgeSize(sourceListDrawing::badgeTextWidth(text));
}

void PXSourceList::drawRowClipRect(QPainter& painter, int row, const QRectF& clip) {
  OutlineView::drawRowClipRect(painter, row, clip);
  const OutlineItem item = itemAtRow(row);
  if (!isGroupItem(item) && itemHasIcon(item)) {
    drawIcon(painter, row);
  }
  if (itemHasBadge(item)) {
    drawBadgeForRowInRect(painter, row,
                          geometry::badgeFrame(rectOfRow(row), sizeOfBadgeAtRow(row)));
  }
}

void PXSourceList::drawIcon(QPainter& painter, int row) {
  const QPixmap icon =
      m_secondaryDataSource->sourceListIconForItem(*this, itemAtRow(row)).value_or(QPixmap());
  if (!icon.isNull()) {
    const QRectF box = geometry::iconBox(frameOfCellAtColumnRow(0, row), m_iconSize);
    const QRectF frame = geometry::iconFrame(box, icon.deviceIndependentSize());
    sourceListDrawing::drawPicture(painter, mirrored(frame), icon);
  }
}

void PXSourceList::drawBadgeForRowInRect(QPainter& painter, int row, const QRectF& frame) {
  const QString text = QString::number(badgeValueForItem(itemAtRow(row)));
  sourceListDrawing::drawBadge(painter, mirrored(frame), text, colorsOfBadge(row));
}

sourceListDrawing::BadgeColors PXSourceList::colorsOfBadge(int row) {
  const OutlineItem item = itemAtRow(row);
  std::optional<QColor> fill;
  std::optional<QColor> text;
  if (m_secondaryDataSource) {
    fill = m_secondaryDataSource->sourceListBadgeBackgroundColorForItem(*this, item);
    text = m_secondaryDataSource->sourceListBadgeTextColorForItem(*this, item);
  }
  const bool firstResponder = window()->focusWidget() == this;
  return sourceListDrawing::badgeColors(
      {isRowSelected(row), mainWindowIsVisible(), firstResponder || editedRow() == row},
      fill.value_or(QColor()), text.value_or(QColor()),
      palette().color(QPalette::Active, QPalette::Highlight));
}

}  // namespace snaplift
