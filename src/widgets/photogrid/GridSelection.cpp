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

void GridSelection::selectOnly(int index) {
  m_selected.clear();
  m_selected.insert(index);
  m_focus = m_anchor = index;
}

void GridSelection::toggle(int index) {
  m_selected.toggle(index);
  m_focus = m_anchor = index;
}

void GridSelection::extendTo(int index, bool keep) {
  if (m_anchor < 0) {
    m_anchor = m_focus >= 0 ? m_focus : index;
  }
  if (!keep) {
    m_selected.clear();
  }
  m_selected.insertRange(std::min(m_anchor, index), std::max(m_anchor, index));
  m_focus = index;
}

void GridSelection::moveFocus(int index) {
  m_focus = index;
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
