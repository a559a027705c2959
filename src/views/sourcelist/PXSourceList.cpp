#include "views/sourcelist/PXSourceList.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <iterator>

#include "views/sourcelist/SourceListGeometry.h"
#include "widgets/desktop/PlainText.h"
#include "widgets/outline/OutlineAccessible.h"

namespace snaplift {
namespace {

// A sidebar is narrow and two levels deep: the heading sets a group apart, not its rows' distance.
constexpr double childIndentation = 4;

}  // namespace

PXSourceList::PXSourceList(QWidget* parent) : OutlineView(parent) {
  PXSL_setup();
}

PXSourceList::PXSourceList(const QRect& frame, QWidget* parent) : OutlineView(parent) {
  setGeometry(frame);
  PXSL_setup();
}

PXSourceList::~PXSourceList() {
  OutlineView::setDelegate(nullptr);
  OutlineView::setDataSource(nullptr);
}

// A view fresh from the form has neither delegate nor data source yet: the window sets them.
void PXSourceList::PXSL_setup() {
  outlineAccessible::install();
  setDelegate(nullptr);
  OutlineView::setDelegate(this);
  setDataSource(nullptr);
  OutlineView::setDataSource(this);
  m_iconSize = {sourceListGeometry::defaultIconSide, sourceListGeometry::defaultIconSide};

  setFrameShape(NoFrame);
  setIndentationPerLevel(childIndentation);
  viewport()->setBackgroundRole(QPalette::Window);
  viewport()->setForegroundRole(QPalette::WindowText);
}

void PXSourceList::setDelegate(PXSourceListDelegate* delegate) {
  using Delegate = PXSourceListDelegate;
  m_subscriptions.clear();
  m_secondaryDelegate = delegate;
  constexpr std::pair<const char*, void (Delegate::*)(const Notification&)> notifications[] = {
      {PXSourceListSelectionIsChanging, &Delegate::sourceListSelectionIsChanging},
      {PXSourceListSelectionDidChange, &Delegate::sourceListSelectionDidChange},
      {PXSourceListItemWillExpand, &Delegate::sourceListItemWillExpand},
      {PXSourceListItemDidExpand, &Delegate::sourceListItemDidExpand},
      {PXSourceListItemWillCollapse, &Delegate::sourceListItemWillCollapse},
      {PXSourceListItemDidCollapse, &Delegate::sourceListItemDidCollapse},
      {PXSourceListDeleteKeyPressedOnRows, &Delegate::sourceListDeleteKeyPressedOnRows}};
  for (const auto& [name, selector] : notifications) {
    registerDelegateToReceiveNotificationWithSelector(name, selector);
  }
}

void PXSourceList::setDataSource(PXSourceListDataSource* dataSource) {
  m_secondaryDataSource = dataSource;
  reloadData();
}

void PXSourceList::setIconSize(const QSizeF& size) {
  m_iconSize = sourceListGeometry::fittedIconSize(size, rowHeight());
  viewport()->update();
}

std::uint64_t PXSourceList::numberOfGroups() {
  return m_secondaryDataSource
             ? m_secondaryDataSource->sourceListNumberOfChildrenOfItem(*this, OutlineItem())
             : 0;
}

bool PXSourceList::isGroupItem(OutlineItem item) const {
  return levelForItem(item) == 0;
}

bool PXSourceList::isGroupAlwaysExpanded(OutlineItem item) {
  return isGroupItem(item) && m_secondaryDelegate &&
         m_secondaryDelegate->sourceListIsGroupAlwaysExpanded(*this, item).value_or(false);
}

bool PXSourceList::itemHasBadge(OutlineItem item) {
  return m_secondaryDataSource &&
         m_secondaryDataSource->sourceListItemHasBadge(*this, item).value_or(false);
}

std::int64_t PXSourceList::badgeValueForItem(OutlineItem item) {
  constexpr auto none = PXSourceListDataSource::notFound;
  return itemHasBadge(item)
             ? m_secondaryDataSource->sourceListBadgeValueForItem(*this, item).value_or(none)
             : none;
}

bool PXSourceList::itemHasIcon(OutlineItem item) {
  return m_secondaryDataSource &&
         m_secondaryDataSource->sourceListItemHasIcon(*this, item).value_or(false);
}

void PXSourceList::reloadData() {
  OutlineView::reloadData();
  expandAlwaysExpandedGroups();
  repairSelection();
}

void PXSourceList::expandAlwaysExpandedGroups() {
  for (std::uint64_t i = 0; m_secondaryDelegate && i < numberOfGroups(); ++i) {
    const OutlineItem group = m_secondaryDataSource->sourceListChildOfItem(*this, i, OutlineItem());
    if (isGroupAlwaysExpanded(group)) {
      expandItemExpandChildren(group, false);
    }
  }
}

// The selection kept its row numbers, and the rows may now show groups.
void PXSourceList::repairSelection() {
  const RowIndexes selected = selectedRowIndexes();
  if (!selected.empty()) {
    int row = *selected.begin();
    if (!isGroupItem(itemAtRow(row))) {
      return;
    }
    do {
      --row;
    } while (row >= 1 && isGroupItem(itemAtRow(row)));
    if (row >= 1) {
      selectRow(row);
    } else {
      deselectAll();
    }
  } else if (!allowsEmptySelection()) {
    int row = 0;
    while (row < numberOfRows() && isGroupItem(itemAtRow(row))) {
      ++row;
    }
    if (row < numberOfRows()) {
      selectRow(row);
    }
  }
}

void PXSourceList::selectRowIndexesByExtendingSelection(const RowIndexes& rows, bool extend) {
  RowIndexes selectable;
  std::copy_if(rows.begin(), rows.end(), std::inserter(selectable, selectable.end()),
               [&](int row) { return !isGroupItem(itemAtRow(row)); });
  if (!selectable.empty()) {
    OutlineView::selectRowIndexesByExtendingSelection(selectable, extend);
  }
}

void PXSourceList::keyDown(QKeyEvent* event) {
  const bool deletes = event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete;
  const RowIndexes selected = selectedRowIndexes();
  if (deletes && !selected.empty() && editedRow() < 0) {
    postNotification(PXSourceListDeleteKeyPressedOnRows, {{"rows", selected}});
  } else {
    OutlineView::keyDown(event);
  }
}

QMenu* PXSourceList::menuForEvent(QMouseEvent* event) {
  if (m_secondaryDelegate) {
    const OutlineItem item = itemAtRow(rowAtPoint(event->position()));
    const auto menu = m_secondaryDelegate->sourceListMenuForEventItem(*this, *event, item);
    if (menu && *menu) {
      return *menu;
    }
  }
  return OutlineView::menuForEvent(event);
}

bool PXSourceList::event(QEvent* event) {
  const bool handled = OutlineView::event(event);
  if (event->type() == QEvent::ParentChange) {
    viewDidMoveToSuperview();
  }
  return handled;
}

void PXSourceList::viewDidMoveToSuperview() {
  setAutoresizesOutlineColumn(false);
}

QString PXSourceList::detailsOfItem(OutlineItem item) {
  return m_secondaryDataSource
             ? plainText::shortened(
                   m_secondaryDataSource->sourceListDetailsForItem(*this, item).value_or(QString()))
             : QString();
}

PXSourceList::RowDescription PXSourceList::descriptionOfRow(int row) {
  const OutlineItem item = itemAtRow(row);
  QStringList parts = detailsOfItem(item).split('\n');
  if (itemHasBadge(item)) {
    parts.prepend(QString::number(badgeValueForItem(item)));
  }
  parts.removeAll(QString());
  return {parts.join(", "), false};
}

QString PXSourceList::toolTipOfRow(int row) {
  QStringList parts{OutlineView::toolTipOfRow(row), detailsOfItem(itemAtRow(row))};
  parts.removeAll(QString());
  return parts.join('\n');
}

}  // namespace snaplift
