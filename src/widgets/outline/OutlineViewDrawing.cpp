#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOption>
#include <algorithm>

#include "widgets/outline/OutlineView.h"

// Where a row's parts are, and how they are drawn.

namespace snaplift {
namespace {

// The view's own places, for rows that no subclass rearranges.
constexpr double triangleSize = 12;
constexpr double triangleInset = 3;
constexpr double titleInset = 18;

constexpr double groupFontScale = 0.85;
constexpr double groupTextOpacity =
    0.7;  // muted, and still well above the contrast that text needs

QFont groupFont(QFont font) {
  font.setBold(true);
  if (font.pointSizeF() > 0) {
    font.setPointSizeF(font.pointSizeF() * groupFontScale);
  } else {
    font.setPixelSize(qRound(font.pixelSize() * groupFontScale));
  }
  return font;
}

}  // namespace

QRectF OutlineView::rectOfRow(int row) const {
  if (!rows().contains(row)) {
    return {};
  }
  const int width = std::max(m_widestRow, viewport()->width());
  return QRectF(-horizontalOffset(), rows()[row].top - verticalOffset(), width, rows()[row].height);
}

int OutlineView::rowAtPoint(const QPointF& point) const {
  return rows().rowAt(point.y() + verticalOffset());
}

QRectF OutlineView::mirrored(const QRectF& rect) const {
  if (layoutDirection() == Qt::LeftToRight) {
    return rect;
  }
  return QRectF(viewport()->width() - rect.x() - rect.width(), rect.y(), rect.width(),
                rect.height());
}

QRect OutlineView::visualRect(const QModelIndex& index) const {
  rows();
  return index.isValid() ? mirrored(rectOfRow(m_model.node(index).row)).toRect() : QRect();
}

QModelIndex OutlineView::indexAt(const QPoint& point) const {
  return indexOfRow(rowAtPoint(point));
}

void OutlineView::scrollTo(const QModelIndex& index, ScrollHint hint) {
  executeDelayedItemsLayout();
  rows();
  const QRectF row = index.isValid() ? rectOfRow(m_model.node(index).row) : QRectF();
  if (row.isEmpty()) {
    return;
  }
  const double below = row.bottom() - viewport()->height();
  double distance = 0;
  if (hint == PositionAtTop || (hint == EnsureVisible && (row.top() < 0 || below > row.top()))) {
    distance = row.top();
  } else if (hint == PositionAtBottom || (hint == EnsureVisible && below > 0)) {
    distance = below;
  } else if (hint == PositionAtCenter) {
    distance = row.center().y() - viewport()->height() / 2.0;
  }
  verticalScrollBar()->setValue(verticalScrollBar()->value() + qRound(distance));
}

QRectF OutlineView::frameOfOutlineCellAtRow(int row) {
  const Node* node = nodeAtRow(row);
  if (!node || !m_model.isExpandable(*node)) {
    return {};
  }
  const QRectF rect = rectOfRow(row);
  return QRectF(rect.x() + node->level * m_indentationPerLevel + triangleInset,
                rect.center().y() - triangleSize / 2, triangleSize, triangleSize);
}

QRectF OutlineView::frameOfCellAtColumnRow(int, int row) {
  const QRectF rect = rectOfRow(row);
  const double inset = std::max(levelForRow(row), 0) * m_indentationPerLevel + titleInset;
  return rect.adjusted(inset, 0, 0, 0);
}

OutlineCell& OutlineView::preparedCellAtColumnRow(int, int row) {
  const OutlineItem item = itemAtRow(row);
  OutlineCell* own = m_delegate->outlineViewDataCellForTableColumnItem(*this, column(), item);
  OutlineCell& cell = own ? *own : column().dataCellForRow(row);
  cell.setObjectValue(objectValueForItem(item));
  const bool group = isGroupRowItem(item);
  cell.setFont(group ? groupFont(font()) : font());
  if (isRowSelected(row)) {
    cell.setTextColor(selectionColors().text);
  } else {
    const QColor text = palette().color(viewport()->foregroundRole());
    cell.setTextColor(group ? blended(text, backgroundColorOfRow(row), groupTextOpacity) : text);
  }
  m_delegate->outlineViewWillDisplayCellForTableColumnItem(*this, cell, column(), item);
  return cell;
}

SelectionColors OutlineView::selectionColors() const {
  return snaplift::selectionColors(palette(), viewport()->foregroundRole(),
                                   viewport()->backgroundRole(), isActiveWindow() && hasFocus());
}

QColor OutlineView::backgroundColorOfRow(int row) const {
  return isRowSelected(row) ? selectionColors().fill
                            : palette().color(viewport()->backgroundRole());
}

int OutlineView::naturalWidthOfRow(int row) {
  const double titleX = frameOfCellAtColumnRow(0, row).x() - rectOfRow(row).x();
  return qCeil(titleX + preparedCellAtColumnRow(0, row).cellSize().width());
}

void OutlineView::updateGeometries() {
  m_widestRow = 0;
  for (int row = 0; m_autoresizesOutlineColumn && row < numberOfRows(); ++row) {
    m_widestRow = std::max(m_widestRow, naturalWidthOfRow(row));
  }
  const QSize page = viewport()->size();
  horizontalScrollBar()->setRange(0, std::max(m_widestRow - page.width(), 0));
  horizontalScrollBar()->setPageStep(page.width());
  verticalScrollBar()->setRange(0, std::max(rows().totalHeight() - page.height(), 0));
  verticalScrollBar()->setPageStep(page.height());
  verticalScrollBar()->setSingleStep(qCeil(m_rowHeight));
  QAbstractItemView::updateGeometries();
}

void OutlineView::scrollContentsBy(int dx, int dy) {
  scrollDirtyRegion(dx, dy);
  viewport()->scroll(dx, dy);
}

int OutlineView::horizontalOffset() const {
  return horizontalScrollBar()->value();
}

int OutlineView::verticalOffset() const {
  return verticalScrollBar()->value();
}

bool OutlineView::isIndexHidden(const QModelIndex& index) const {
  return visualRect(index).isEmpty();
}

QRegion OutlineView::visualRegionForSelection(const QItemSelection& selection) const {
  QRect region;
  for (const QItemSelectionRange& range : selection) {
    region |= visualRect(range.topLeft()) | visualRect(range.bottomRight());
  }
  return region;
}

void OutlineView::paintEvent(QPaintEvent* event) {
  executeDelayedItemsLayout();
  QPainter painter(viewport());
  const QRect bounds = event->rect();
  int row = std::max(rowAtPoint(bounds.topLeft()), 0);
  for (; row < numberOfRows(); ++row) {
    const QRectF rect = rectOfRow(row);
    if (rect.top() > bounds.bottom()) {
      break;
    }
    // Two far rows that turn their spinners make one tall event: the rows between are not its own.
    if (event->region().intersects(rect.toAlignedRect())) {
      drawRowClipRect(painter, row, bounds);
    }
  }
  drawDropIndicator(painter);
}

void OutlineView::drawRowClipRect(QPainter& painter, int row, const QRectF&) {
  QStyleOptionViewItem option;
  initViewItemOption(&option);
  option.rect = rectOfRow(row).toRect();
  option.showDecorationSelected = true;
  option.viewItemPosition = QStyleOptionViewItem::OnlyOne;
  option.palette.setColor(QPalette::Highlight, selectionColors().fill);
  option.state.setFlag(QStyle::State_Selected, isRowSelected(row));
  option.state.setFlag(QStyle::State_Active, isActiveWindow());
  option.state.setFlag(QStyle::State_MouseOver, false);
  style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, &painter, this);

  drawTriangle(painter, row);
  if (row != editedRow()) {
    OutlineCell& cell = preparedCellAtColumnRow(0, row);
    const QRectF frame = frameOfCellAtColumnRow(0, row);
    cell.drawWithFrame(painter, mirrored(frame), layoutDirection());
  }
  // A selected row shows by itself where the keyboard is, unless there are several.
  if (hasFocus() && row == focusedRow() && !(isRowSelected(row) && numberOfSelectedRows() == 1)) {
    QStyleOptionFocusRect focus;
    focus.QStyleOption::operator=(option);
    focus.rect = option.rect;
    focus.state |= QStyle::State_KeyboardFocusChange | QStyle::State_Item;
    focus.backgroundColor = palette().color(viewport()->backgroundRole());
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
  }
}

void OutlineView::drawTriangle(QPainter& painter, int row) {
  const QRectF frame = frameOfOutlineCellAtRow(row);
  if (frame.isEmpty()) {
    return;
  }
  QStyleOption option;
  option.initFrom(viewport());
  option.rect = mirrored(frame).toRect();
  option.state |= QStyle::State_Children;
  option.state.setFlag(QStyle::State_Open, isItemExpanded(itemAtRow(row)));
  option.state.setFlag(QStyle::State_Selected, isRowSelected(row));
  style()->drawPrimitive(QStyle::PE_IndicatorBranch, &option, &painter, this);
}

void OutlineView::drawDropIndicator(QPainter& painter) {
  if (state() != DraggingState || !showDropIndicator() || !m_dropPoint) {
    return;
  }
  QStyleOption option;
  option.initFrom(this);
  option.rect = rectOfRow(rowAtPoint(*m_dropPoint)).toRect();
  switch (dropIndicatorPosition()) {
    case AboveItem:
      option.rect.setHeight(0);
      break;
    case BelowItem:
      option.rect.setTop(option.rect.bottom() + 1);
      option.rect.setHeight(0);
      break;
    case OnViewport:
      option.rect = viewport()->rect();
      break;
    case OnItem:
      break;
  }
  style()->drawPrimitive(QStyle::PE_IndicatorItemViewItemDrop, &option, &painter, this);
}

void OutlineView::dragMoveEvent(QDragMoveEvent* event) {
  m_dropPoint = event->position();
  QAbstractItemView::dragMoveEvent(event);
}

void OutlineView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange) {
    viewport()->update();
  }
  QAbstractItemView::changeEvent(event);
}

}  // namespace snaplift
