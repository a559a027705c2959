#include <QScrollBar>
#include <algorithm>

#include "widgets/photogrid/ImageBrowserAccessible.h"
#include "widgets/photogrid/ImageBrowserView.h"

namespace snaplift {

int ImageBrowserView::focusedIndex() const {
  if (m_selection.focus() >= 0 || itemCount() == 0) {
    return m_selection.focus();
  }
  return selectionIndexes().empty() ? anchorOfFirstVisible().index : selectionIndexes().first();
}

void ImageBrowserView::changeSelection(const std::function<void()>& change) {
  const IndexSet before = selectionIndexes();
  const int focusBefore = m_selection.focus();
  change();
  selectionDidChange(before, focusBefore);
}

void ImageBrowserView::selectionDidChange(const IndexSet& before, int focusBefore) {
  if (m_selection.focus() != focusBefore) {
    viewport()->update();
    ImageBrowserAccessible::announceFocus(*this);
  }
  if (!(selectionIndexes() == before)) {
    viewport()->update();
    ImageBrowserAccessible::announceSelection(*this);
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
  scrollToIndex(index);
}

void ImageBrowserView::scrollToIndex(int index) {
  if (index < 0 || index >= itemCount()) {
    return;
  }
  constexpr int margin = 14;
  // The header of its group is above it, wherever it stands.
  const QRect cell =
      m_layout.cellRect(index).adjusted(0, -margin - m_layout.headerHeight(), 0, margin);
  const int height = viewport()->height();
  if (cell.top() < scrolled()) {
    verticalScrollBar()->setValue(cell.top());
  } else if (cell.bottom() >= scrolled() + height) {
    verticalScrollBar()->setValue(std::min(cell.bottom() + 1 - height, cell.top()));
  }
}

void ImageBrowserView::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update();
  ImageBrowserAccessible::announceFocus(*this);
}

void ImageBrowserView::focusOutEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusOutEvent(event);
  viewport()->update();
}

}  // namespace snaplift
