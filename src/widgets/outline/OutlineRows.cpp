#include "widgets/outline/OutlineRows.h"

#include <algorithm>

namespace snaplift {

void OutlineRows::clear() {
  for (const Row& row : m_rows) {
    row.node->row = -1;
  }
  m_rows.clear();
  m_valid = false;
}

void OutlineRows::build(OutlineModel& model, const std::function<bool(const Node&)>& isOpen,
                        const std::function<int(const Node&)>& height) {
  clear();
  int top = 0;
  const std::function<void(Node&)> addChildren = [&](Node& parent) {
    for (Node& node : model.children(parent)) {
      node.row = count();
      const int rowHeight = height(node);
      m_rows.push_back({&node, top, rowHeight});
      top += rowHeight;
      if (isOpen(node)) {
        addChildren(node);
      }
    }
  };
  addChildren(model.root());
  m_valid = true;
}

int OutlineRows::rowAt(double y) const {
  const auto below = std::upper_bound(m_rows.begin(), m_rows.end(), y,
                                      [](double value, const Row& row) { return value < row.top; });
  if (below == m_rows.begin()) {
    return -1;
  }
  const auto row = below - 1;
  return y < row->top + row->height ? static_cast<int>(row - m_rows.begin()) : -1;
}

}  // namespace snaplift
