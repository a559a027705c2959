#pragma once

#include <QRect>

#include "widgets/photogrid/GridLayout.h"
#include "widgets/photogrid/IndexSet.h"

namespace snaplift {

// The rules of selecting in a grid, without a view: what is selected, which photo has the keyboard
// (the focus), and from where a range is extended (the anchor). Focus and anchor are -1 while there
// is none. A rubber band always starts from what was selected when it began, so that a band that
// shrinks gives back what it took.
class GridSelection {
public:
  GridSelection() = default;
  explicit GridSelection(int itemCount) : m_selected(itemCount) {}

  const IndexSet& selected() const { return m_selected; }
  int focus() const { return m_focus; }

  void setSelected(IndexSet selected);
  void selectAll();
  void invert() { m_selected.invert(); }
  void clear() { m_selected.clear(); }

  // Selects `index` alone.
  void selectOnly(int index);
  void toggle(int index);
  // Selects from the anchor to `index`; what else was selected stays where `keep` is set.
  void extendTo(int index, bool keep);
  // Moves the focus and leaves the selection.
  void moveFocus(int index);

  // `keep`: what is selected now stays selected.
  void beginBand(bool keep);
  // `area` in the coordinates of `layout`.
  void setBand(const GridLayout& layout, const QRect& area);
  // Back to what was selected before the band.
  void cancelBand();

private:
  IndexSet m_selected;
  IndexSet m_beforeBand;
  IndexSet m_bandBase;
  int m_focus = -1;
  int m_anchor = -1;
};

}  // namespace snaplift
