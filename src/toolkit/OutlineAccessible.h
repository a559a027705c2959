#pragma once

#include <QAccessible>
#include <unordered_map>

#include "toolkit/OutlineModel.h"

namespace snaplift {

class OutlineView;

// An outline for screen readers: a tree whose items hold their children, so that a reader knows
// each row's level by where it stands. (The interface that Qt gives a tree view is one flat table.)
// An item has its title for a name, the view's description of the row, and can be selected, opened,
// closed and asked for its menu.
//
// Interfaces of rows are made when asked for and end with their nodes: the view clears them before
// the model forgets its nodes. The user interface's thread only.
class OutlineAccessibleRows {
public:
  explicit OutlineAccessibleRows(OutlineView& view) : m_view(view) {}
  OutlineAccessibleRows(const OutlineAccessibleRows&) = delete;
  OutlineAccessibleRows& operator=(const OutlineAccessibleRows&) = delete;
  ~OutlineAccessibleRows() { clear(); }

  // Lets Qt make these interfaces for every OutlineView. More than once is harmless.
  static void install();

  QAccessibleInterface* interfaceOf(OutlineModel::Node& node);
  // nullptr where there is no such row or item.
  QAccessibleInterface* interfaceOfRow(int row);
  QAccessibleInterface* interfaceOfItem(OutlineItem item);
  void clear();

  // Tell the readers that are there, if any.
  void announceFocus();
  void announceSelection();
  void announceExpansion(OutlineItem item);
  void announceDescription(OutlineItem item);

private:
  OutlineView& m_view;
  std::unordered_map<OutlineModel::Node*, QAccessible::Id> m_ids;
};

}  // namespace snaplift
