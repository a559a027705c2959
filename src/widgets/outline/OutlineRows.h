#pragma once

#include <functional>
#include <vector>

#include "widgets/outline/OutlineModel.h"

namespace snaplift {

// The rows of an outline as they are shown, top to bottom: which node stands in which row, and
// where its row lies. The list is built in one pass and thrown away by whatever changes rows or
// heights. It must be cleared before the model forgets its nodes.
class OutlineRows {
public:
  using Node = OutlineModel::Node;
  struct Row {
    Node* node;
    int top;  // device-independent pixels below the first row's top
    int height;
  };

  bool valid() const { return m_valid; }
  void clear();
  // `isOpen`: whether the children of a node are shown. `height` of a node's row, in whole pixels.
  void build(OutlineModel& model, const std::function<bool(const Node&)>& isOpen,
             const std::function<int(const Node&)>& height);

  int count() const { return static_cast<int>(m_rows.size()); }
  bool contains(int row) const { return row >= 0 && row < count(); }
  // `row` must exist.
  const Row& operator[](int row) const { return m_rows[static_cast<std::size_t>(row)]; }
  int totalHeight() const { return m_rows.empty() ? 0 : m_rows.back().top + m_rows.back().height; }
  // The row at `y` below the first row's top; -1 above the first and below the last.
  int rowAt(double y) const;

private:
  std::vector<Row> m_rows;
  bool m_valid = false;
};

}  // namespace snaplift
