#pragma once

#include <QColor>
#include <QPixmap>
#include <QStringList>
#include <QVariant>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "widgets/outline/OutlineItem.h"
#include "widgets/outline/OutlineViewDataSource.h"

class QMimeData;
class QUrl;

namespace snaplift {

class PXSourceList;

// Supplies a sidebar's items and what their rows show. The absent item is the invisible root, its
// children are the groups. Not owned by the sidebar; every call comes on the user interface's
// thread, many of them while rows are drawn, so answers are at hand or quick to make.
//
// The first four operations are required. The others are optional: std::nullopt, the answer of this
// class, means "not implemented", and the sidebar then does what the comment says. An answer of no
// object (an invalid colour, a null picture) is an answer.
class PXSourceListDataSource {
public:
  // The badge value of a row that has none.
  static constexpr std::int64_t notFound = std::numeric_limits<std::int64_t>::max();

  virtual ~PXSourceListDataSource() = default;

  virtual std::size_t sourceListNumberOfChildrenOfItem(PXSourceList& sourceList,
                                                       OutlineItem item) = 0;
  virtual OutlineItem sourceListChildOfItem(PXSourceList& sourceList, std::size_t index,
                                            OutlineItem item) = 0;
  // The row's title.
  virtual QVariant sourceListObjectValueForItem(PXSourceList& sourceList, OutlineItem item) = 0;
  virtual bool sourceListIsItemExpandable(PXSourceList& sourceList, OutlineItem item) = 0;

  // What is known of the item beyond its title, a line for each thing: the row's tooltip, and told
  // to screen readers. Plain text. Otherwise the tooltip shows a title that is cut off.
  virtual std::optional<QString> sourceListDetailsForItem(PXSourceList&, OutlineItem) { return {}; }

  // The user has edited the title. Otherwise nothing happens.
  virtual void sourceListSetObjectValueForItem(PXSourceList&, const QVariant& /*value*/,
                                               OutlineItem) {}

  // Otherwise no badge; notFound; white; the default badge colour.
  virtual std::optional<bool> sourceListItemHasBadge(PXSourceList&, OutlineItem) { return {}; }
  virtual std::optional<std::int64_t> sourceListBadgeValueForItem(PXSourceList&, OutlineItem) {
    return {};
  }
  virtual std::optional<QColor> sourceListBadgeTextColorForItem(PXSourceList&, OutlineItem) {
    return {};
  }
  virtual std::optional<QColor> sourceListBadgeBackgroundColorForItem(PXSourceList&, OutlineItem) {
    return {};
  }

  // Otherwise no icon; nothing is painted, though there is room for it.
  virtual std::optional<bool> sourceListItemHasIcon(PXSourceList&, OutlineItem) { return {}; }
  virtual std::optional<QPixmap> sourceListIconForItem(PXSourceList&, OutlineItem) { return {}; }

  // A value that names an item beyond this run, and the way back. Otherwise none.
  virtual std::optional<OutlineItem> sourceListItemForPersistentObject(PXSourceList&,
                                                                       const QVariant& /*object*/) {
    return {};
  }
  virtual std::optional<QVariant> sourceListPersistentObjectForItem(PXSourceList&, OutlineItem) {
    return {};
  }

  // Dragging: see OutlineViewDataSource. Otherwise nothing can be dragged or dropped.
  virtual std::optional<bool> sourceListWriteItemsToPasteboard(PXSourceList&,
                                                               const std::vector<OutlineItem>&,
                                                               QMimeData& /*pasteboard*/) {
    return {};
  }
  virtual std::optional<Qt::DropAction> sourceListValidateDropProposedItemProposedChildIndex(
      PXSourceList&, const OutlineDraggingInfo&, OutlineItem /*item*/, int /*childIndex*/) {
    return {};
  }
  virtual std::optional<bool> sourceListAcceptDropItemChildIndex(PXSourceList&,
                                                                 const OutlineDraggingInfo&,
                                                                 OutlineItem /*item*/,
                                                                 int /*childIndex*/) {
    return {};
  }
  virtual std::optional<QStringList>
  sourceListNamesOfPromisedFilesDroppedAtDestinationForDraggedItems(
      PXSourceList&, const QUrl& /*destination*/, const std::vector<OutlineItem>&) {
    return {};
  }
};

}  // namespace snaplift
