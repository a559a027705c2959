#include <QAccessible>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "toolkit/ImageBrowserView.h"

namespace snaplift {

void ImageBrowserView::changeSelection(const std::function<void()>& change) {
  const IndexSet before = selectionIndexes();
  const int focusBefore = focusedIndex();
  change();
  selectionDidChange(before, focusBefore);
}

void ImageBrowserView::selectionDidChange(const IndexSet& before, int focusBefore) {
  if (focusedIndex() != focusBefore) {
    const QModelIndex current = model()->index(std::max(focusedIndex(), 0), 0);
    selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    viewport()->update();
  }
  if (!(selectionIndexes() == before)) {
    viewport()->update();
    if (QAccessible::isActive()) {
      QAccessibleEvent event(this, QAccessible::SelectionWithin);
      QAccessible::updateAccessibility(&event);
    }
    emit selectionIndexesChanged();
  }
}

void ImageBrowserView::setSelectionIndexes(const IndexSet& indexes) {
  changeSelection([&] { m_selection.setSelected(indexes); });
}

void ImageBrowserView::selectAll() {
  changeSelection([this] { m_selection.selectAll(); });
}

void ImageBrowserView::deselectAll() {
  changeSelection([this] { m_selection.clear(); });
}

void ImageBrowserView::invertSelection() {
  changeSelection([this] { m_selection.invert(); });
}

void ImageBrowserView::stepTo(int index) {
  if (index < 0 || index >= itemCount()) {
    return;
  }
  changeSelection([&] { m_selection.selectOnly(index); });
  scrollTo(model()->index(index, 0));
}

// What QAbstractItemView wants answered.

QRect ImageBrowserView::visualRect(const QModelIndex& index) const {
  return index.isValid() && index.row() < itemCount() ? itemFrameAtIndex(index.row()) : QRect();
}

void ImageBrowserView::scrollTo(const QModelIndex& index, ScrollHint hint) {
  if (!index.isValid() || index.row() >= itemCount()) {
    return;
  }
  constexpr int margin = 14;
  const QRect cell = m_layout.cellRect(index.row()).adjusted(0, -margin, 0, margin);
  const int height = viewport()->height();
  const int top = verticalOffset();
  int target = top;
  if (hint == PositionAtTop || (hint == EnsureVisible && cell.top() < top)) {
    target = cell.top();
  } else if (hint == PositionAtBottom || (hint == EnsureVisible && cell.bottom() >= top + height)) {
    target = std::min(cell.bottom() + 1 - height, cell.top());
  } else if (hint == PositionAtCenter) {
    target = cell.center().y() - height / 2;
  }
  verticalScrollBar()->setValue(target);
}

QModelIndex ImageBrowserView::indexAt(const QPoint& point) const {
  const std::optional<int> index = indexOfItemAtPoint(point);
  return index ? model()->index(*index, 0) : QModelIndex();
}

void ImageBrowserView::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags flags) {
  changeSelection([&] {
    m_selection.beginBand(!flags.testFlag(QItemSelectionModel::Clear));
    m_selection.setBand(m_layout, rect.translated(0, verticalOffset()));
  });
}

QRegion ImageBrowserView::visualRegionForSelection(const QItemSelection& selection) const {
  return selection.isEmpty() ? QRegion() : QRegion(viewport()->rect());
}

QModelIndex ImageBrowserView::moveCursor(CursorAction action, Qt::KeyboardModifiers) {
  static const std::pair<CursorAction, int> keys[] = {
      {MoveUp, Qt::Key_Up},         {MoveDown, Qt::Key_Down},         {MoveLeft, Qt::Key_Left},
      {MoveRight, Qt::Key_Right},   {MoveHome, Qt::Key_Home},         {MoveEnd, Qt::Key_End},
      {MovePageUp, Qt::Key_PageUp}, {MovePageDown, Qt::Key_PageDown}, {MoveNext, Qt::Key_Right},
      {MovePrevious, Qt::Key_Left}};
  const auto* key = std::find_if(std::begin(keys), std::end(keys),
                                 [&](const auto& pair) { return pair.first == action; });
  return key == std::end(keys) ? QModelIndex() : model()->index(moveTarget(key->second), 0);
}

void ImageBrowserView::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update();
}

void ImageBrowserView::focusOutEvent(QFocusEvent* event) {
  QAbstractItemView::focusOutEvent(event);
  viewport()->update();
}

}  // namespace snaplift
