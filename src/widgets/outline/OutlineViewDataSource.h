#pragma once

#include <QStringList>
#include <QVariant>
#include <cstddef>
#include <vector>

#include "widgets/outline/OutlineItem.h"

class QMimeData;
class QUrl;

namespace snaplift {

class OutlineColumn;
class OutlineView;

// What is over an outline in a drag.
struct OutlineDraggingInfo {
  const QMimeData& pasteboard;
  Qt::DropAction proposedOperation;  // by the modifier keys and the source
};

// Supplies an outline's items. Not owned by the outline; every call comes on the user interface's
// thread. The absent item is the invisible root. Children are asked for when they are to be shown
// and kept until the next reload; titles are asked for at every drawing.
class OutlineViewDataSource {
public:
  // A child index that means "onto the item" where a drop is proposed.
  static constexpr int dropOnItemIndex = -1;

  virtual ~OutlineViewDataSource() = default;

  virtual std::size_t outlineViewNumberOfChildrenOfItem(OutlineView& view, OutlineItem item) = 0;
  virtual OutlineItem outlineViewChildOfItem(OutlineView& view, std::size_t index,
                                             OutlineItem item) = 0;
  virtual bool outlineViewIsItemExpandable(OutlineView& view, OutlineItem item) = 0;
  virtual QVariant outlineViewObjectValueForTableColumnByItem(OutlineView& view,
                                                              OutlineColumn& column,
                                                              OutlineItem item) = 0;
  // The user has edited the row.
  virtual void outlineViewSetObjectValueForTableColumnByItem(OutlineView&,
                                                             const QVariant& /*value*/,
                                                             OutlineColumn&, OutlineItem) {}

  // A value that names `item` beyond this run, invalid if there is none, and the way back.
  virtual QVariant outlineViewPersistentObjectForItem(OutlineView&, OutlineItem) { return {}; }
  virtual OutlineItem outlineViewItemForPersistentObject(OutlineView&, const QVariant& /*object*/) {
    return {};
  }

  // Puts `items` on the pasteboard of a drag that begins; false: they cannot be dragged.
  virtual bool outlineViewWriteItemsToPasteboard(OutlineView&, const std::vector<OutlineItem>&,
                                                 QMimeData& /*pasteboard*/) {
    return false;
  }
  // What dropping would do: between the children of `item`, before the one at `childIndex`, or onto
  // `item` itself (dropOnItemIndex). Qt::IgnoreAction refuses.
  virtual Qt::DropAction outlineViewValidateDropProposedItemProposedChildIndex(
      OutlineView&, const OutlineDraggingInfo&, OutlineItem /*item*/, int /*childIndex*/) {
    return Qt::IgnoreAction;
  }
  virtual bool outlineViewAcceptDropItemChildIndex(OutlineView&, const OutlineDraggingInfo&,
                                                   OutlineItem /*item*/, int /*childIndex*/) {
    return false;
  }
  // Makes the promised files of a drag in the folder `destination`; answers their names.
  virtual QStringList outlineViewNamesOfPromisedFilesDroppedAtDestinationForDraggedItems(
      OutlineView&, const QUrl& /*destination*/, const std::vector<OutlineItem>&) {
    return {};
  }
};

}  // namespace snaplift
