#include <QItemSelectionModel>
#include <algorithm>

#include "widgets/outline/OutlineView.h"

// Which rows are selected, and how a user's proposals become selections.

namespace snaplift {

RowIndexes OutlineView::selectedRowIndexes() const {
  rows();
  RowIndexes selected;
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    const std::vector<Node>& siblings = m_model.node(range.parent()).children;
    for (int position = range.top(); position <= range.bottom(); ++position) {
      const int row = siblings[static_cast<std::size_t>(position)].row;
      if (row >= 0) {
        selected.insert(row);
      }
    }
  }
  return selected;
}

int OutlineView::selectedRow() const {
  const int focused = focusedRow();
  if (isRowSelected(focused)) {
    return focused;
  }
  const RowIndexes selected = selectedRowIndexes();
  return selected.empty() ? -1 : *selected.rbegin();
}

bool OutlineView::isRowSelected(int row) const {
  return selectionModel()->isSelected(indexOfRow(row));
}

int OutlineView::focusedRow() const {
  rows();
  const QModelIndex index = currentIndex();
  return index.isValid() ? m_model.node(index).row : -1;
}

int OutlineView::editedRow() const {
  return state() == EditingState ? focusedRow() : -1;
}

void OutlineView::focusRow(int row) {
  selectionModel()->setCurrentIndex(indexOfRow(row), QItemSelectionModel::NoUpdate);
}

void OutlineView::scrollRowToVisible(int row) {
  scrollTo(indexOfRow(row));
}

void OutlineView::selectRowIndexesByExtendingSelection(const RowIndexes& requested, bool extend) {
  RowIndexes chosen(requested.lower_bound(0), requested.lower_bound(numberOfRows()));
  if (!m_allowsMultipleSelection && chosen.size() > 1) {
    chosen.erase(std::next(chosen.begin()), chosen.end());
  }
  if (!chosen.empty()) {
    focusRow(*chosen.begin());
    m_selectionAnchor = currentIndex();
  }
  if (extend && m_allowsMultipleSelection) {
    chosen.merge(selectedRowIndexes());
  } else if (extend && chosen.empty()) {
    return;
  }
  applySelection(chosen);
}

void OutlineView::deselectAll() {
  applySelection({});
}

void OutlineView::applySelection(const RowIndexes& chosen) {
  if (chosen == selectedRowIndexes()) {
    return;
  }
  QItemSelection selection;
  for (const int row : chosen) {
    const QModelIndex index = indexOfRow(row);
    const bool adjoins = !selection.isEmpty() && selection.last().parent() == index.parent() &&
                         selection.last().bottom() + 1 == index.row();
    if (adjoins) {
      selection.last() = QItemSelectionRange(selection.last().topLeft(), index);
    } else {
      selection.append(QItemSelectionRange(index));
    }
  }
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

void OutlineView::proposeSelection(const RowIndexes& proposed, int lead) {
  const RowIndexes answer =
      m_delegate->outlineViewSelectionIndexesForProposedSelection(*this, proposed);
  RowIndexes allowed(answer.lower_bound(0), answer.lower_bound(numberOfRows()));
  std::erase_if(allowed, [&](int row) { return !mayProposeRow(row); });
  if (allowed.empty() && (!answer.empty() || !m_allowsEmptySelection)) {
    return;
  }
  if (lead < 0 && !allowed.empty()) {
    lead = *allowed.begin();
  }
  if (lead >= 0) {
    focusRow(lead);
  }
  applySelection(allowed);
}

bool OutlineView::mayProposeRow(int row) {
  const OutlineItem item = itemAtRow(row);
  return item && m_delegate->outlineViewShouldSelectItem(*this, item);
}

void OutlineView::selectOnly(int row) {
  proposeSelection({row}, row);
  if (isRowSelected(row)) {
    m_selectionAnchor = indexOfRow(row);
  }
}

void OutlineView::toggleSelectionOf(int row) {
  m_selectionAnchor = indexOfRow(row);
  RowIndexes proposed = selectedRowIndexes();
  if (proposed.erase(row) == 0) {
    proposed.insert(row);
  }
  proposeSelection(proposed, row);
}

void OutlineView::selectFromAnchor(int row) {
  if (!m_selectionAnchor.isValid()) {
    m_selectionAnchor = currentIndex();
  }
  rows();
  const int anchor = m_selectionAnchor.isValid() ? m_model.node(m_selectionAnchor).row : row;
  RowIndexes proposed;
  for (int each = std::min(row, anchor); each <= std::max(row, anchor); ++each) {
    if (mayProposeRow(each)) {
      proposed.insert(each);
    }
  }
  proposeSelection(proposed, row);
}

void OutlineView::selectAll() {
  if (m_allowsMultipleSelection) {
    RowIndexes all;
    for (int row = 0; row < numberOfRows(); ++row) {
      all.insert(all.end(), row);
    }
    proposeSelection(all, focusedRow());
  }
}

void OutlineView::deselectInside(const Node& closing) {
  const auto inside = [&](int row) {
    const Node* node = nodeAtRow(row);
    while (node && node != &closing) {
      node = node->parent;
    }
    return node && nodeAtRow(row) != &closing;
  };
  if (inside(focusedRow())) {
    focusRow(closing.row);
  }
  RowIndexes left = selectedRowIndexes();
  if (std::erase_if(left, inside) == 0) {
    return;
  }
  if (left.empty() && !m_allowsEmptySelection) {
    int row = selectableRowFrom(closing.row, -1);
    for (int below = closing.row + 1; row < 0 && below < numberOfRows(); ++below) {
      row = !inside(below) && mayProposeRow(below) ? below : -1;
    }
    if (row >= 0) {
      left.insert(row);
    }
  }
  applySelection(left);
}

// Qt's own handlers ask this wherever they would select: the handlers here do so instead, because
// Qt's keep an anchor of their own that knows nothing of rows selected by an operation.
QItemSelectionModel::SelectionFlags OutlineView::selectionCommand(const QModelIndex&,
                                                                  const QEvent*) const {
  return QItemSelectionModel::NoUpdate;
}

void OutlineView::setSelection(const QRect&, QItemSelectionModel::SelectionFlags) {}

void OutlineView::selectionChanged(const QItemSelection& selected,
                                   const QItemSelection& deselected) {
  QAbstractItemView::selectionChanged(selected, deselected);
  if (m_selectingQuietly) {
    return;
  }
  emit rowsSelected();
  if (m_mouseSelects) {
    m_delegate->outlineViewSelectionIsChanging(*this);
  }
  m_delegate->outlineViewSelectionDidChange(*this);
}

void OutlineView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QAbstractItemView::currentChanged(current, previous);
  viewport()->update(visualRect(previous));
  emit focusMoved();
}

}  // namespace snaplift
