#pragma once

#include <QAbstractItemModel>
#include <QStringList>
#include <unordered_map>
#include <vector>

#include "widgets/outline/OutlineItem.h"

namespace snaplift {

class OutlineView;
class OutlineViewDataSource;

// Shows an OutlineViewDataSource to Qt's item views: remembers which item stands where, and asks
// for the rest. It belongs to one outline view and lives with it, on the user interface's thread.
//
// A node is one place in the tree. Its address stays the same until reload(); its children are
// asked for when somebody first wants them, so that closed branches cost nothing. Where a data
// source hands out one item twice, look-ups by item find its first place.
class OutlineModel : public QAbstractItemModel {
public:
  struct Node {
    OutlineItem item;
    Node* parent = nullptr;  // of a top-level node the root's node; of that nullptr
    int position = 0;        // among its parent's children
    int level = -1;          // 0 for the top level
    int row = -1;            // in the view; -1 while a closed branch hides it
    bool loaded = false;
    std::vector<Node> children;  // filled once: nodes never move
  };

  explicit OutlineModel(OutlineView& view);

  OutlineViewDataSource* dataSource() const { return m_dataSource; }
  // Does not reload by itself.
  void setDataSource(OutlineViewDataSource* dataSource) { m_dataSource = dataSource; }
  // Forgets every node. Whoever holds an index or a node lets go of it first.
  void reload();

  Node& root() { return m_root; }
  // The children of `node`, asked for on the first call.
  std::vector<Node>& children(Node& node);
  bool isExpandable(const Node& node) const;
  // nullptr for the absent item and for one that has not been asked for.
  Node* nodeForItem(OutlineItem item) const;
  // The node of a valid index, the root's node otherwise.
  Node& node(const QModelIndex& index) const;
  QModelIndex index(const Node& node) const;

  void setAcceptedDropTypes(const QStringList& types) { m_dropTypes = types; }

  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& index) const override;
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  bool hasChildren(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  QStringList mimeTypes() const override { return m_dropTypes; }
  Qt::DropActions supportedDropActions() const override;
  QMimeData* mimeData(const QModelIndexList& indexes) const override;
  bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                       const QModelIndex& parent) const override;
  bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                    const QModelIndex& parent) override;

private:
  OutlineView& m_view;
  OutlineViewDataSource* m_dataSource = nullptr;
  // Asking for children is no change that anybody could see, so it happens under const queries too.
  mutable Node m_root;
  mutable std::unordered_map<OutlineItem, Node*> m_nodes;
  QStringList m_dropTypes;

  std::vector<Node>& loadedChildren(Node& node) const;
};

}  // namespace snaplift
