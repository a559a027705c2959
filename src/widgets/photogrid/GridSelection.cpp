#include "widgets/photogrid/GridSelection.h"

#include <algorithm>
#include <utility>

namespace snaplift {

void GridSelection::setSelected(IndexSet selected) {
  if (selected.size() != m_selected.size()) {
    IndexSet fitted(m_selected.size());
    for (const int index : selected.indexes()) {
      fitted.insert(index);
    }
    selected = std::move(fitted);
  }
  m_selected = std::move(selected);
  m_anchor = m_selected.first();
}

void GridSelection::selectAll() {
  m_selected.insertRange(0, m_selected.size() - 1);
}

void GridSelection::selectOnly(IndexRange items) {
  m_selected.clear();
  m_selected.insertRange(items.first, items.last);
  m_focus = m_anchor = items.first;
}

void GridSelection::toggle(IndexRange items) {
  const int before = m_selected.count();
  m_selected.insertRange(items.first, items.last);
  if (m_selected.count() == before) {
    m_selected.removeRange(items.first, items.last);
  }
  m_focus = m_anchor = items.first;
}

void GridSelection::extendThrough(IndexRange items, bool keep) {
  if (m_anchor < 0) {
    m_anchor = m_focus >= 0 ? m_focus : items.first;
  }
  if (!keep) {
    m_selected.clear();
  }
  m_selected.insertRange(std::min(m_anchor, items.first), std::max(m_anchor, items.last));
  m_focus = items.last > m_anchor ? items.last : items.first;
}

void GridSelection::moveFocus(int index) {
  m_focus = index;
}

void GridSelection::rearrange(int itemCount, const std::function<int(int oldIndex)>& newIndexOf) {
  IndexSet selected(itemCount);
  for (const int index : m_selected.indexes()) {
    selected.insert(newIndexOf(index));
  }
  m_selected = std::move(selected);
  m_focus = m_focus < 0 ? -1 : newIndexOf(m_focus);
  m_anchor = m_anchor < 0 ? -1 : newIndexOf(m_anchor);
}

void GridSelection::beginBand(bool keep) {
  m_beforeBand = m_selected;
  if (!keep) {
    m_selected.clear();
  }
  m_bandBase = m_selected;
}

void GridSelection::setBand(const GridLayout& layout, const QRect& area) {
  m_selected = m_bandBase;
  layout.forEachRunIn(area, [&](IndexRange run) { m_selected.insertRange(run.first, run.last); });
}

void GridSelection::cancelBand() {
  m_selected = m_beforeBand;
}

}  // namespace snaplift
