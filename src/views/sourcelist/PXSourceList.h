#pragma once

#include <QSizeF>
#include <cstdint>
#include <string>
#include <vector>

#include "foundation/NotificationCenter.h"
#include "views/sourcelist/PXSourceListDataSource.h"
#include "views/sourcelist/PXSourceListDelegate.h"
#include "views/sourcelist/SourceListDrawing.h"
#include "widgets/outline/OutlineView.h"
#include "widgets/outline/OutlineViewDataSource.h"
#include "widgets/outline/OutlineViewDelegate.h"

namespace snaplift {

// The notifications of a sidebar. It posts them on the default notification centre, with itself as
// the object; see PXSourceListDelegate for what they carry.
inline constexpr char PXSourceListSelectionIsChanging[] = "PXSourceListSelectionIsChanging";
inline constexpr char PXSourceListSelectionDidChange[] = "PXSourceListSelectionDidChange";
inline constexpr char PXSourceListItemWillExpand[] = "PXSourceListItemWillExpand";
inline constexpr char PXSourceListItemDidExpand[] = "PXSourceListItemDidExpand";
inline constexpr char PXSourceListItemWillCollapse[] = "PXSourceListItemWillCollapse";
inline constexpr char PXSourceListItemDidCollapse[] = "PXSourceListItemDidCollapse";
inline constexpr char PXSourceListDeleteKeyPressedOnRows[] = "PXSourceListDeleteKeyPressedOnRows";

// A sidebar: an outline whose top-level items are groups, which are never selected, and whose other
// rows carry an icon and a number badge. Its data source and delegate are simpler than an
// outline's: it is the outline's own data source and delegate itself, asks the application's
// secondary objects and adds its rules. Groups may be kept always expanded, and a reload mends a
// selection that it moved onto a group.
//
// The user interface's thread only. Data source and delegate are not owned.
class PXSourceList : public OutlineView,
                     private OutlineViewDataSource,
                     private OutlineViewDelegate {
  Q_OBJECT

public:
  explicit PXSourceList(QWidget* parent = nullptr);
  explicit PXSourceList(const QRect& frame, QWidget* parent = nullptr);
  ~PXSourceList() override;

  // Moves the subscriptions to the notifications from the previous delegate to this one.
  virtual void setDelegate(PXSourceListDelegate* delegate);
  PXSourceListDelegate* delegate() const { return m_secondaryDelegate; }
  // Reloads. Without a data source the sidebar is empty.
  virtual void setDataSource(PXSourceListDataSource* dataSource);
  PXSourceListDataSource* dataSource() const { return m_secondaryDataSource; }

  // 16 by 16 at first. The setter shrinks a size that is higher than a row.
  QSizeF iconSize() const { return m_iconSize; }
  void setIconSize(const QSizeF& size);

  std::uint64_t numberOfGroups();
  bool isGroupItem(OutlineItem item) const;
  bool isGroupAlwaysExpanded(OutlineItem item);
  bool itemHasBadge(OutlineItem item);
  // PXSourceListDataSource::notFound where there is none.
  std::int64_t badgeValueForItem(OutlineItem item);
  bool itemHasIcon(OutlineItem item);
  QString detailsOfItem(OutlineItem item);

  // Asks for everything anew, expands what is always expanded, and mends the selection.
  void reloadData() override;
  // Groups among `rows` are left out; a request that names nothing else changes nothing.
  void selectRowIndexesByExtendingSelection(const RowIndexes& rows, bool extend) override;

  QRectF frameOfOutlineCellAtRow(int row) override;
  QRectF frameOfCellAtColumnRow(int column, int row) override;
  // Empty where the row has no badge.
  virtual QSizeF sizeOfBadgeAtRow(int row);
  // The badge's number and the item's details.
  RowDescription descriptionOfRow(int row) override;
  QString toolTipOfRow(int row) override;

protected:
  void drawRowClipRect(QPainter& painter, int row, const QRectF& clip) override;
  virtual void drawBadgeForRowInRect(QPainter& painter, int row, const QRectF& frame);
  // The colours of the row's badge, whether it has one or not.
  sourceListDrawing::BadgeColors colorsOfBadge(int row);
  void keyDown(QKeyEvent* event) override;
  QMenu* menuForEvent(QMouseEvent* event) override;
  bool event(QEvent* event) override;
  // The view has been placed in another window or pane.
  void viewDidMoveToSuperview();

  // Subscribes the delegate's operation `selector` to its sidebar's notification `name`, if the
  // delegate is a Delegate at all.
  template <typename Delegate>
  void registerDelegateToReceiveNotificationWithSelector(
      std::string name, void (Delegate::*selector)(const Notification&)) {
    if (auto* delegate = dynamic_cast<Delegate*>(m_secondaryDelegate)) {
      m_subscriptions.push_back(NotificationCenter::defaultCenter().addObserver(
          std::move(name), this, [delegate, selector](const Notification& notification) {
            (delegate->*selector)(notification);
          }));
    }
  }
  void postNotification(const char* name, const Notification::UserInfo& userInfo = {});

private:
  PXSourceListDelegate* m_secondaryDelegate = nullptr;
  PXSourceListDataSource* m_secondaryDataSource = nullptr;
  QSizeF m_iconSize;
  std::vector<NotificationCenter::Token> m_subscriptions;  // the delegate's

  void PXSL_setup();
  void expandAlwaysExpandedGroups();
  void repairSelection();
  void selectRow(int row) { selectRowIndexesByExtendingSelection({row}, false); }
  void drawIcon(QPainter& painter, int row);

  // What the outline asks; see OutlineViewDataSource and OutlineViewDelegate.
  std::size_t outlineViewNumberOfChildrenOfItem(OutlineView&, OutlineItem item) override;
  OutlineItem outlineViewChildOfItem(OutlineView&, std::size_t index, OutlineItem item) override;
  bool outlineViewIsItemExpandable(OutlineView&, OutlineItem item) override;
  QVariant outlineViewObjectValueForTableColumnByItem(OutlineView&, OutlineColumn&,
                                                      OutlineItem item) override;
  void outlineViewSetObjectValueForTableColumnByItem(OutlineView&, const QVariant& value,
                                                     OutlineColumn&, OutlineItem item) override;
  OutlineItem outlineViewItemForPersistentObject(OutlineView&, const QVariant& object) override;
  QVariant outlineViewPersistentObjectForItem(OutlineView&, OutlineItem item) override;
  bool outlineViewWriteItemsToPasteboard(OutlineView&, const std::vector<OutlineItem>& items,
                                         QMimeData& pasteboard) override;
  Qt::DropAction outlineViewValidateDropProposedItemProposedChildIndex(
      OutlineView&, const OutlineDraggingInfo& info, OutlineItem item, int childIndex) override;
  bool outlineViewAcceptDropItemChildIndex(OutlineView&, const OutlineDraggingInfo& info,
                                           OutlineItem item, int childIndex) override;
  QStringList outlineViewNamesOfPromisedFilesDroppedAtDestinationForDraggedItems(
      OutlineView&, const QUrl& destination, const std::vector<OutlineItem>& items) override;

  bool outlineViewShouldExpandItem(OutlineView&, OutlineItem item) override;
  bool outlineViewShouldCollapseItem(OutlineView&, OutlineItem item) override;
  OutlineCell* outlineViewDataCellForTableColumnItem(OutlineView&, OutlineColumn& column,
                                                     OutlineItem item) override;
  void outlineViewWillDisplayCellForTableColumnItem(OutlineView&, OutlineCell& cell, OutlineColumn&,
                                                    OutlineItem item) override;
  bool outlineViewShouldSelectItem(OutlineView&, OutlineItem item) override;
  RowIndexes outlineViewSelectionIndexesForProposedSelection(OutlineView&,
                                                             const RowIndexes& proposed) override;
  bool outlineViewShouldEditTableColumnItem(OutlineView&, OutlineColumn&,
                                            OutlineItem item) override;
  bool outlineViewShouldTrackCellForTableColumnItem(OutlineView&, OutlineCell& cell, OutlineColumn&,
                                                    OutlineItem item) override;
  double outlineViewHeightOfRowByItem(OutlineView&, OutlineItem item) override;
  bool outlineViewIsGroupItem(OutlineView&, OutlineItem item) override;
  void outlineViewSelectionIsChanging(OutlineView&) override;
  void outlineViewSelectionDidChange(OutlineView&) override;
  void outlineViewItemWillExpand(OutlineView&, OutlineItem item) override;
  void outlineViewItemDidExpand(OutlineView&, OutlineItem item) override;
  void outlineViewItemWillCollapse(OutlineView&, OutlineItem item) override;
  void outlineViewItemDidCollapse(OutlineView&, OutlineItem item) override;
};

}  // namespace snaplift
