#include "widgets/outline/OutlineView.h"

#include <QGuiApplication>
#include <QStyledItemDelegate>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "widgets/desktop/PlainText.h"
#include "widgets/outline/OutlineViewDataSource.h"

namespace snaplift {
namespace {

// Room around a title, and for the icons of 16 that rows carry.
constexpr double rowPadding = 2;
constexpr double minimumRowHeight = 20;

double defaultRowHeight(const QFont& font) {
  return std::max(minimumRowHeight, std::ceil(QFontMetricsF(font).height()) + 2 * rowPadding);
}

// Puts the editor where the title is.
class TitleEditing : public QStyledItemDelegate {
public:
  explicit TitleEditing(OutlineView& view) : QStyledItemDelegate(&view), m_view(view) {}

  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem&,
                            const QModelIndex& index) const override {
    const int row = m_view.rowAtPoint(m_view.visualRect(index).center());
    QRectF frame = m_view.frameOfCellAtColumnRow(0, row);
    frame.setTop(m_view.rectOfRow(row).top());
    frame.setHeight(m_view.rectOfRow(row).height());
    editor->setGeometry(m_view.mirrored(frame).toRect());
  }

private:
  OutlineView& m_view;
};

}  // namespace

OutlineView::OutlineView(QWidget* parent)
    : QAbstractItemView(parent), m_model(*this), m_rowHeight(defaultRowHeight(font())) {
  m_columns.push_back(std::make_unique<OutlineColumn>());
  setModel(&m_model);
  setItemDelegate(new TitleEditing(*this));  // a child of the view
  setVerticalScrollMode(ScrollPerPixel);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(EditKeyPressed | DoubleClicked);
  setDragEnabled(true);
  setDragDropMode(DragOnly);
  setMouseTracking(true);
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, viewport(), qOverload<>(&QWidget::update));
}

OutlineView::~OutlineView() {
  // The model, a field, ends before the base does; the base must not reach for it. Nor need data
  // source and delegate be there any more.
  setDelegate(nullptr);
  setDataSource(nullptr);
  forgetRows();
  setModel(nullptr);
}

void OutlineView::setDelegate(OutlineViewDelegate* delegate) {
  m_delegate = delegate ? delegate : &m_defaultDelegate;
}

void OutlineView::reloadData() {
  const RowIndexes selected = selectedRowIndexes();
  const int focused = focusedRow();
  const auto expanded = std::exchange(m_expandedItems, {});
  m_model.reload();
  restoreExpandedItems(m_model.root(), expanded);
  m_rows.clear();

  RowIndexes kept = selected;
  kept.erase(kept.lower_bound(numberOfRows()), kept.end());
  m_selectingQuietly = true;
  setAutoScroll(false);
  applySelection(kept);
  focusRow(std::min(focused, numberOfRows() - 1));
  setAutoScroll(true);
  m_selectingQuietly = false;
  if (kept != selected) {
    m_delegate->outlineViewSelectionDidChange(*this);
  }
}

void OutlineView::reloadItem(OutlineItem item) {
  const int row = rowForItem(item);
  if (row < 0) {
    return;
  }
  if (heightOfItem(item) != rows()[row].height) {
    rowsDidChange();
    return;
  }
  viewport()->update(rectOfRow(row).toAlignedRect());
}

void OutlineView::setRowHeight(double height) {
  m_rowHeight = height;
  rowsDidChange();
}

void OutlineView::rowsDidChange() {
  m_rows.clear();
  scheduleDelayedItemsLayout();
}

void OutlineView::setIndentationPerLevel(double indentation) {
  m_indentationPerLevel = indentation;
  viewport()->update();
}

void OutlineView::setAutoresizesOutlineColumn(bool autoresizes) {
  m_autoresizesOutlineColumn = autoresizes;
  scheduleDelayedItemsLayout();
}

void OutlineView::registerForDraggedTypes(const QStringList& types) {
  m_model.setAcceptedDropTypes(types);
  setDragDropMode(types.isEmpty() ? DragOnly : DragDrop);
}

const OutlineRows& OutlineView::rows() const {
  if (!m_rows.valid()) {
    auto& self = const_cast<OutlineView&>(*this);  // the list is a memory of answers, see m_rows
    m_rows.build(
        self.m_model,
        [&](const Node& node) {
          return m_expandedItems.contains(node.item) && m_model.isExpandable(node);
        },
        [&](const Node& node) { return self.heightOfItem(node.item); });
  }
  return m_rows;
}

OutlineView::Node* OutlineView::nodeAtRow(int row) const {
  return rows().contains(row) ? rows()[row].node : nullptr;
}

QModelIndex OutlineView::indexOfRow(int row) const {
  const Node* node = nodeAtRow(row);
  return node ? m_model.index(*node) : QModelIndex();
}

int OutlineView::numberOfRows() const {
  return rows().count();
}

OutlineItem OutlineView::itemAtRow(int row) const {
  const Node* node = nodeAtRow(row);
  return node ? node->item : OutlineItem();
}

int OutlineView::rowForItem(OutlineItem item) const {
  rows();
  const Node* node = m_model.nodeForItem(item);
  return node ? node->row : -1;
}

int OutlineView::levelForItem(OutlineItem item) const {
  const Node* node = m_model.nodeForItem(item);
  return node ? node->level : -1;
}

int OutlineView::levelForRow(int row) const {
  const Node* node = nodeAtRow(row);
  return node ? node->level : -1;
}

bool OutlineView::isItemExpanded(OutlineItem item) const {
  return m_expandedItems.contains(item);
}

void OutlineView::expandItemExpandChildren(OutlineItem item, bool expandChildren) {
  Node* node = item ? m_model.nodeForItem(item) : &m_model.root();
  if (!node || !m_model.isExpandable(*node)) {
    return;
  }
  if (item && !isItemExpanded(item) && m_delegate->outlineViewShouldExpandItem(*this, item)) {
    m_delegate->outlineViewItemWillExpand(*this, item);
    m_expandedItems.insert(item);
    rowsDidChange();
    emit itemToggled(item);
    m_delegate->outlineViewItemDidExpand(*this, item);
  }
  if (expandChildren && (!item || isItemExpanded(item))) {
    for (const Node& child : m_model.children(*node)) {
      expandItemExpandChildren(child.item, true);
    }
  }
}

void OutlineView::collapseItem(OutlineItem item) {
  Node* node = m_model.nodeForItem(item);
  if (!node || !isItemExpanded(item) || !m_delegate->outlineViewShouldCollapseItem(*this, item)) {
    return;
  }
  m_delegate->outlineViewItemWillCollapse(*this, item);
  deselectInside(*node);
  m_expandedItems.erase(item);
  rowsDidChange();
  emit itemToggled(item);
  m_delegate->outlineViewItemDidCollapse(*this, item);
}

void OutlineView::toggleItem(OutlineItem item) {
  if (isItemExpanded(item)) {
    collapseItem(item);
  } else {
    expandItemExpandChildren(item, false);
  }
}

void OutlineView::restoreExpandedItems(Node& parent, const std::unordered_set<OutlineItem>& items) {
  for (Node& node : m_model.children(parent)) {
    if (items.contains(node.item) && m_model.isExpandable(node)) {
      m_expandedItems.insert(node.item);
      restoreExpandedItems(node, items);
    }
  }
}

QVariantList OutlineView::persistentExpandedItems() {
  QVariantList objects;
  for (int row = 0; dataSource() && row < numberOfRows(); ++row) {
    if (isItemExpanded(itemAtRow(row))) {
      const QVariant object =
          dataSource()->outlineViewPersistentObjectForItem(*this, itemAtRow(row));
      if (object.isValid()) {
        objects << object;
      }
    }
  }
  return objects;
}

void OutlineView::expandPersistentItems(const QVariantList& objects) {
  for (const QVariant& object : objects) {
    if (dataSource()) {
      const OutlineItem item = dataSource()->outlineViewItemForPersistentObject(*this, object);
      if (item) {
        expandItemExpandChildren(item, false);
      }
    }
  }
}

QVariant OutlineView::objectValueForItem(OutlineItem item) {
  return dataSource()
             ? dataSource()->outlineViewObjectValueForTableColumnByItem(*this, column(), item)
             : QVariant();
}

QString OutlineView::titleOfItem(OutlineItem item) {
  return plainText::shortened(objectValueForItem(item).toString());
}

bool OutlineView::isGroupRowItem(OutlineItem item) {
  return m_delegate->outlineViewIsGroupItem(*this, item);
}

bool OutlineView::mayEditItem(OutlineItem item) {
  return m_delegate->outlineViewShouldEditTableColumnItem(*this, column(), item);
}

int OutlineView::heightOfItem(OutlineItem item) {
  const double height = m_delegate->outlineViewHeightOfRowByItem(*this, item);
  constexpr double tallest = 10'000;  // keeps the sum of all rows within an int
  return static_cast<int>(std::lround(std::clamp(height > 0 ? height : m_rowHeight, 1.0, tallest)));
}

void OutlineView::forgetRows() {
  m_rows.clear();
  emit rowsForgotten();
}

void OutlineView::doItemsLayout() {
  m_rows.clear();
  QAbstractItemView::doItemsLayout();
}

OutlineView::RowDescription OutlineView::descriptionOfRow(int) {
  return {};
}

}  // namespace snaplift
