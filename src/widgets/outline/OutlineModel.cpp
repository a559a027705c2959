#include "widgets/outline/OutlineModel.h"

#include <QMimeData>
#include <algorithm>
#include <limits>
#include <memory>

#include "widgets/outline/OutlineView.h"
#include "widgets/outline/OutlineViewDataSource.h"

namespace snaplift {

OutlineModel::OutlineModel(OutlineView& view) : QAbstractItemModel(&view), m_view(view) {}

void OutlineModel::reload() {
  beginResetModel();
  m_view.forgetRows();
  m_nodes.clear();
  m_root.children.clear();
  m_root.loaded = false;
  endResetModel();
}

std::vector<OutlineModel::Node>& OutlineModel::children(Node& node) {
  return loadedChildren(node);
}

std::vector<OutlineModel::Node>& OutlineModel::loadedChildren(Node& node) const {
  if (!node.loaded && m_dataSource) {
    node.loaded = true;
    constexpr std::size_t limit = std::numeric_limits<int>::max();
    const auto count =
        std::min(m_dataSource->outlineViewNumberOfChildrenOfItem(m_view, node.item), limit);
    node.children = std::vector<Node>(count);
    for (std::size_t i = 0; i < count; ++i) {
      Node& child = node.children[i];
      child.item = m_dataSource->outlineViewChildOfItem(m_view, i, node.item);
      child.parent = &node;
      child.position = static_cast<int>(i);
      child.level = node.level + 1;
      m_nodes.emplace(child.item, &child);
    }
  }
  return node.children;
}

bool OutlineModel::isExpandable(const Node& node) const {
  return m_dataSource &&
         (node.level < 0 || m_dataSource->outlineViewIsItemExpandable(m_view, node.item));
}

OutlineModel::Node* OutlineModel::nodeForItem(OutlineItem item) const {
  const auto found = item ? m_nodes.find(item) : m_nodes.end();
  return found == m_nodes.end() ? nullptr : found->second;
}

OutlineModel::Node& OutlineModel::node(const QModelIndex& index) const {
  return index.isValid() ? *static_cast<Node*>(index.internalPointer()) : m_root;
}

QModelIndex OutlineModel::index(const Node& node) const {
  return node.parent ? createIndex(node.position, 0, &node) : QModelIndex();
}

QModelIndex OutlineModel::index(int row, int column, const QModelIndex& parent) const {
  return hasIndex(row, column, parent) ? index(node(parent).children[static_cast<std::size_t>(row)])
                                       : QModelIndex();
}

QModelIndex OutlineModel::parent(const QModelIndex& index) const {
  return index.isValid() ? this->index(*node(index).parent) : QModelIndex();
}

int OutlineModel::rowCount(const QModelIndex& parent) const {
  return static_cast<int>(loadedChildren(node(parent)).size());
}

int OutlineModel::columnCount(const QModelIndex&) const {
  return 1;
}

bool OutlineModel::hasChildren(const QModelIndex& parent) const {
  return isExpandable(node(parent));
}

QVariant OutlineModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || !m_dataSource) {
    return {};
  }
  const bool isTitle = role == Qt::DisplayRole || role == Qt::EditRole;
  return isTitle ? m_view.objectValueForItem(node(index).item) : QVariant();
}

bool OutlineModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || !m_dataSource || role != Qt::EditRole) {
    return false;
  }
  m_dataSource->outlineViewSetObjectValueForTableColumnByItem(
      m_view, value, *m_view.tableColumns().front(), node(index).item);
  emit dataChanged(index, index);
  return true;
}

Qt::ItemFlags OutlineModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) {
    return Qt::ItemIsDropEnabled;
  }
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
  // Even what the user may not select: after a reload a selected row number may show such an item,
  // and the selection model would drop it before the view could repair the selection.
  flags |= Qt::ItemIsSelectable;
  flags.setFlag(Qt::ItemIsEditable, m_view.mayEditItem(node(index).item));
  return flags;
}

Qt::DropActions OutlineModel::supportedDropActions() const {
  return Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
}

QMimeData* OutlineModel::mimeData(const QModelIndexList& indexes) const {
  std::vector<OutlineItem> items;
  for (const QModelIndex& index : indexes) {
    items.push_back(node(index).item);
  }
  auto pasteboard = std::make_unique<QMimeData>();
  const bool written =
      m_dataSource && m_dataSource->outlineViewWriteItemsToPasteboard(m_view, items, *pasteboard);
  return written ? pasteboard.release() : nullptr;
}

bool OutlineModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                   const QModelIndex& parent) const {
  return m_dataSource && m_dataSource->outlineViewValidateDropProposedItemProposedChildIndex(
                             m_view, {*data, action}, node(parent).item, row) != Qt::IgnoreAction;
}

bool OutlineModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                const QModelIndex& parent) {
  return m_dataSource && m_dataSource->outlineViewAcceptDropItemChildIndex(m_view, {*data, action},
                                                                           node(parent).item, row);
}

}  // namespace snaplift
