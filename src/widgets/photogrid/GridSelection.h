#pragma once

#include <QRect>
#include <functional>

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

  // Selects `items` and nothing else; the first of them has the focus.
  void selectOnly(IndexRange items);
  void selectOnly(int index) { selectOnly(IndexRange{index, index}); }
  // Selects those of `items` that are not; where all are, none of them any more.
  void toggle(IndexRange items);
  void toggle(int index) { toggle(IndexRange{index, index}); }
  // Selects from the anchor through `items`; what else was selected stays where `keep` is set. The
  // focus goes to the end that is away from the anchor.
  void extendThrough(IndexRange items, bool keep);
  void extendTo(int index, bool keep) { extendThrough(IndexRange{index, index}, keep); }
  // Moves the focus and leaves the selection.
  void moveFocus(int index);

  // The same selection of photos that stand elsewhere now: `newIndexOf` each, below `itemCount`, or
  // -1 for one that is not there any more. There is no band meanwhile.
  void rearrange(int itemCount, const std::function<int(int oldIndex)>& newIndexOf);

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
