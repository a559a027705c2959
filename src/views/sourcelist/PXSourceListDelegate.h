#pragma once

#include <optional>

#include "foundation/NotificationCenter.h"
#include "widgets/outline/OutlineItem.h"
#include "widgets/outline/RowIndexes.h"

class QMenu;
class QMouseEvent;

namespace snaplift {

class OutlineCell;
class PXSourceList;

// Decides what a sidebar's user may do and hears of what has happened. Not owned by the sidebar;
// every call comes on the user interface's thread. All operations are optional: std::nullopt, the
// answer of this class, means "not implemented", and the sidebar then does what the comment says.
class PXSourceListDelegate {
public:
  virtual ~PXSourceListDelegate() = default;

  // Always expanded groups have no triangle and refuse to collapse. Otherwise no.
  virtual std::optional<bool> sourceListIsGroupAlwaysExpanded(PXSourceList&,
                                                              OutlineItem /*group*/) {
    return {};
  }
  // The context menu for a press; `item` is the one under the mouse, if any. nullptr or otherwise:
  // the sidebar's own menu. The menu stays the delegate's, and must live until it closes.
  virtual std::optional<QMenu*> sourceListMenuForEventItem(PXSourceList&, QMouseEvent&,
                                                           OutlineItem) {
    return {};
  }
  // Otherwise yes. Not asked about groups: they cannot be selected.
  virtual std::optional<bool> sourceListShouldSelectItem(PXSourceList&, OutlineItem) { return {}; }
  // Otherwise the proposal.
  virtual std::optional<RowIndexes> sourceListSelectionIndexesForProposedSelection(
      PXSourceList&, const RowIndexes& /*proposed*/) {
    return {};
  }
  // Otherwise yes. Not asked about groups: they cannot be edited.
  virtual std::optional<bool> sourceListShouldEditItem(PXSourceList&, OutlineItem) { return {}; }
  // Otherwise no.
  virtual std::optional<bool> sourceListShouldTrackCellForItem(PXSourceList&, OutlineCell&,
                                                               OutlineItem) {
    return {};
  }
  // Otherwise yes.
  virtual std::optional<bool> sourceListShouldExpandItem(PXSourceList&, OutlineItem) { return {}; }
  virtual std::optional<bool> sourceListShouldCollapseItem(PXSourceList&, OutlineItem) {
    return {};
  }
  // In device-independent pixels. Otherwise the sidebar's rowHeight.
  virtual std::optional<double> sourceListHeightOfRowByItem(PXSourceList&, OutlineItem) {
    return {};
  }
  // The last chance to change the cell that draws the title. Otherwise nothing happens.
  virtual void sourceListWillDisplayCellForItem(PXSourceList&, OutlineCell&, OutlineItem) {}
  // The cell that draws the title, not owned. Otherwise the column's own.
  virtual std::optional<OutlineCell*> sourceListDataCellForItem(PXSourceList&, OutlineItem) {
    return {};
  }

  // The notifications that the sidebar subscribes its delegate to; their object is the sidebar. The
  // four about expansion carry the item under "item" (an OutlineItem), the last one the selected
  // rows under "rows" (RowIndexes).
  virtual void sourceListSelectionIsChanging(const Notification&) {}
  virtual void sourceListSelectionDidChange(const Notification&) {}
  virtual void sourceListItemWillExpand(const Notification&) {}
  virtual void sourceListItemDidExpand(const Notification&) {}
  virtual void sourceListItemWillCollapse(const Notification&) {}
  virtual void sourceListItemDidCollapse(const Notification&) {}
  virtual void sourceListDeleteKeyPressedOnRows(const Notification&) {}
};

}  // namespace snaplift
