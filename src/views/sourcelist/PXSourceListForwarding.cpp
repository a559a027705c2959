#include "views/sourcelist/PXSourceList.h"

// What the outline asks the sidebar, handed on to the application's data source and delegate with
// the sidebar's own rules about groups.

namespace snaplift {

std::size_t PXSourceList::outlineViewNumberOfChildrenOfItem(OutlineView&, OutlineItem item) {
  return m_secondaryDataSource
             ? m_secondaryDataSource->sourceListNumberOfChildrenOfItem(*this, item)
             : 0;
}

OutlineItem PXSourceList::outlineViewChildOfItem(OutlineView&, std::size_t index,
                                                 OutlineItem item) {
  return m_secondaryDataSource ? m_secondaryDataSource->sourceListChildOfItem(*this, index, item)
                               : OutlineItem();
}

bool PXSourceList::outlineViewIsItemExpandable(OutlineView&, OutlineItem item) {
  return m_secondaryDataSource && m_secondaryDataSource->sourceListIsItemExpandable(*this, item);
}

QVariant PXSourceList::outlineViewObjectValueForTableColumnByItem(OutlineView&, OutlineColumn&,
                                                                  OutlineItem item) {
  return m_secondaryDataSource ? m_secondaryDataSource->sourceListObjectValueForItem(*this, item)
                               : QVariant();
}

void PXSourceList::outlineViewSetObjectValueForTableColumnByItem(OutlineView&,
                                                                 const QVariant& value,
                                                                 OutlineColumn&, OutlineItem item) {
  if (m_secondaryDataSource) {
    m_secondaryDataSource->sourceListSetObjectValueForItem(*this, value, item);
  }
}

OutlineItem PXSourceList::outlineViewItemForPersistentObject(OutlineView&, const QVariant& object) {
  return m_secondaryDataSource
             ? m_secondaryDataSource->sourceListItemForPersistentObject(*this, object)
                   .value_or(OutlineItem())
             : OutlineItem();
}

QVariant PXSourceList::outlineViewPersistentObjectForItem(OutlineView&, OutlineItem item) {
  return m_secondaryDataSource
             ? m_secondaryDataSource->sourceListPersistentObjectForItem(*this, item)
                   .value_or(QVariant())
             : QVariant();
}

bool PXSourceList::outlineViewWriteItemsToPasteboard(OutlineView&,
                                                     const std::vector<OutlineItem>& items,
                                                     QMimeData& pasteboard) {
  return m_secondaryDataSource &&
         m_secondaryDataSource->sourceListWriteItemsToPasteboard(*this, items, pasteboard)
             .value_or(false);
}

Qt::DropAction PXSourceList::outlineViewValidateDropProposedItemProposedChildIndex(
    OutlineView&, const OutlineDraggingInfo& info, OutlineItem item, int childIndex) {
  return m_secondaryDataSource ? m_secondaryDataSource
                                     ->sourceListValidateDropProposedItemProposedChildIndex(
                                         *this, info, item, childIndex)
                                     .value_or(Qt::IgnoreAction)
                               : Qt::IgnoreAction;
}

bool PXSourceList::outlineViewAcceptDropItemChildIndex(OutlineView&,
                                                       const OutlineDraggingInfo& info,
                                                       OutlineItem item, int childIndex) {
  return m_secondaryDataSource &&
         m_secondaryDataSource->sourceListAcceptDropItemChildIndex(*this, info, item, childIndex)
             .value_or(false);
}

QStringList PXSourceList::outlineViewNamesOfPromisedFilesDroppedAtDestinationForDraggedItems(
    OutlineView&, const QUrl& destination, const std::vector<OutlineItem>& items) {
  return m_secondaryDataSource
             ? m_secondaryDataSource
                   ->sourceListNamesOfPromisedFilesDroppedAtDestinationForDraggedItems(
                       *this, destination, items)
                   .value_or(QStringList())
             : QStringList();
}

bool PXSourceList::outlineViewShouldExpandItem(OutlineView&, OutlineItem item) {
  return !m_secondaryDelegate ||
         m_secondaryDelegate->sourceListShouldExpandItem(*this, item).value_or(true);
}

bool PXSourceList::outlineViewShouldCollapseItem(OutlineView&, OutlineItem item) {
  return !isGroupAlwaysExpanded(item) &&
         (!m_secondaryDelegate ||
          m_secondaryDelegate->sourceListShouldCollapseItem(*this, item).value_or(true));
}

OutlineCell* PXSourceList::outlineViewDataCellForTableColumnItem(OutlineView&,
                                                                 OutlineColumn& column,
                                                                 OutlineItem item) {
  const auto cell = m_secondaryDelegate
                        ? m_secondaryDelegate->sourceListDataCellForItem(*this, item)
                        : std::nullopt;
  return cell && *cell ? *cell : &column.dataCellForRow(rowForItem(item));
}

void PXSourceList::outlineViewWillDisplayCellForTableColumnItem(OutlineView&, OutlineCell& cell,
                                                                OutlineColumn&, OutlineItem item) {
  if (m_secondaryDelegate) {
    m_secondaryDelegate->sourceListWillDisplayCellForItem(*this, cell, item);
  }
}

bool PXSourceList::outlineViewShouldSelectItem(OutlineView&, OutlineItem item) {
  return !isGroupItem(item) &&
         (!m_secondaryDelegate ||
          m_secondaryDelegate->sourceListShouldSelectItem(*this, item).value_or(true));
}

RowIndexes PXSourceList::outlineViewSelectionIndexesForProposedSelection(
    OutlineView&, const RowIndexes& proposed) {
  if (numberOfSelectedRows() == 0 && !proposed.empty() &&
      isGroupItem(itemAtRow(*proposed.begin()))) {
    return {};
  }
  return m_secondaryDelegate
             ? m_secondaryDelegate->sourceListSelectionIndexesForProposedSelection(*this, proposed)
                   .value_or(proposed)
             : proposed;
}

bool PXSourceList::outlineViewShouldEditTableColumnItem(OutlineView&, OutlineColumn&,
                                                        OutlineItem item) {
  return !isGroupItem(item) &&
         (!m_secondaryDelegate ||
          m_secondaryDelegate->sourceListShouldEditItem(*this, item).value_or(true));
}

bool PXSourceList::outlineViewShouldTrackCellForTableColumnItem(OutlineView&, OutlineCell& cell,
                                                                OutlineColumn&, OutlineItem item) {
  return m_secondaryDelegate &&
         m_secondaryDelegate->sourceListShouldTrackCellForItem(*this, cell, item).value_or(false);
}

double PXSourceList::outlineViewHeightOfRowByItem(OutlineView&, OutlineItem item) {
  return m_secondaryDelegate
             ? m_secondaryDelegate->sourceListHeightOfRowByItem(*this, item).value_or(rowHeight())
             : rowHeight();
}

bool PXSourceList::outlineViewIsGroupItem(OutlineView&, OutlineItem item) {
  return isGroupItem(item);
}

void PXSourceList::outlineViewSelectionIsChanging(OutlineView&) {
  postNotification(PXSourceListSelectionIsChanging);
}

void PXSourceList::outlineViewSelectionDidChange(OutlineView&) {
  postNotification(PXSourceListSelectionDidChange);
}

void PXSourceList::outlineViewItemWillExpand(OutlineView&, OutlineItem item) {
  postNotification(PXSourceListItemWillExpand, {{"item", item}});
}

void PXSourceList::outlineViewItemDidExpand(OutlineView&, OutlineItem item) {
  postNotification(PXSourceListItemDidExpand, {{"item", item}});
}

void PXSourceList::outlineViewItemWillCollapse(OutlineView&, OutlineItem item) {
  postNotification(PXSourceListItemWillCollapse, {{"item", item}});
}

void PXSourceList::outlineViewItemDidCollapse(OutlineView&, OutlineItem item) {
  postNotification(PXSourceListItemDidCollapse, {{"item", item}});
}

void PXSourceList::postNotification(const char* name, const Notification::UserInfo& userInfo) {
  NotificationCenter::defaultCenter().post(name, this, userInfo);
}

}  // namespace snaplift
