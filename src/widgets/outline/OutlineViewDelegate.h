#pragma once

#include "widgets/outline/OutlineItem.h"
#include "widgets/outline/RowIndexes.h"

namespace snaplift {

class OutlineCell;
class OutlineColumn;
class OutlineView;

// Decides what an outline's user may do, and hears what has happened. Not owned by the outline;
// every call comes on the user interface's thread. What the outline's own operations select is not
// asked about, only what the user proposes.
class OutlineViewDelegate {
public:
  virtual ~OutlineViewDelegate() = default;

  virtual bool outlineViewShouldExpandItem(OutlineView&, OutlineItem) { return true; }
  virtual bool outlineViewShouldCollapseItem(OutlineView&, OutlineItem) { return true; }
  virtual bool outlineViewShouldSelectItem(OutlineView&, OutlineItem) { return true; }
  // What to select instead of `proposed`. Of the answer, rows that may not be selected are dropped;
  // when that leaves nothing of it, the selection stays as it was.
  virtual RowIndexes outlineViewSelectionIndexesForProposedSelection(OutlineView&,
                                                                     const RowIndexes& proposed) {
    return proposed;
  }
  virtual bool outlineViewShouldEditTableColumnItem(OutlineView&, OutlineColumn&, OutlineItem) {
    return false;
  }
  // Whether `cell` may follow a press by itself (OutlineCell::trackMouse).
  virtual bool outlineViewShouldTrackCellForTableColumnItem(OutlineView&, OutlineCell&,
                                                            OutlineColumn&, OutlineItem) {
    return false;
  }
  // Group rows look like headings and are never selected by the user interface itself.
  virtual bool outlineViewIsGroupItem(OutlineView&, OutlineItem) { return false; }
  // In device-independent pixels, rounded to whole ones; 0 or less means the outline's rowHeight.
  virtual double outlineViewHeightOfRowByItem(OutlineView&, OutlineItem) { return 0; }
  // The cell for the item's row, not owned; nullptr means the column's own.
  virtual OutlineCell* outlineViewDataCellForTableColumnItem(OutlineView&, OutlineColumn&,
                                                             OutlineItem) {
    return nullptr;
  }
  // The last chance to change the prepared cell before it is measured or drawn.
  virtual void outlineViewWillDisplayCellForTableColumnItem(OutlineView&, OutlineCell&,
                                                            OutlineColumn&, OutlineItem) {}

  // The mouse changes the selection; outlineViewSelectionDidChange follows.
  virtual void outlineViewSelectionIsChanging(OutlineView&) {}
  virtual void outlineViewSelectionDidChange(OutlineView&) {}
  virtual void outlineViewItemWillExpand(OutlineView&, OutlineItem) {}
  virtual void outlineViewItemDidExpand(OutlineView&, OutlineItem) {}
  virtual void outlineViewItemWillCollapse(OutlineView&, OutlineItem) {}
  virtual void outlineViewItemDidCollapse(OutlineView&, OutlineItem) {}
};

}  // namespace snaplift
