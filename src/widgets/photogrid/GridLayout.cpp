#include "widgets/photogrid/GridLayout.h"

#include <algorithm>

namespace snaplift {
namespace {

constexpr int spacing = 14;  // between two cells at least, and around the grid

}  // namespace

GridLayout::GridLayout(int itemCount, int width, QSize cell)
    : m_itemCount(std::clamp(itemCount, 0, maxItems)),
      m_width(std::max(width, 1)),
      m_cell(std::max(cell.width(), 1), std::clamp(cell.height(), 1, maxCellHeight)) {
  m_columns = std::max(1, (m_width - spacing) / (m_cell.width() + spacing));
}

int GridLayout::rowHeight() const {
  return m_cell.height() + spacing;
}

int GridLayout::contentHeight() const {
  return m_itemCount == 0 ? 0 : rows() * rowHeight() + spacing;
}

int GridLayout::columnLeft(int column) const {
  // The space on both sides of each column is equal but for the rounding, which is spread.
  const int spare = std::max(m_width - m_columns * m_cell.width(), 2 * spacing);
  return (column + 1) * spare / (m_columns + 1) + column * m_cell.width();
}

QRect GridLayout::cellRect(int index) const {
  const int row = index / m_columns;
  return {QPoint(columnLeft(index % m_columns), spacing + row * rowHeight()), m_cell};
}

int GridLayout::indexAt(QPoint point) const {
  const int index = nearestIndex(point);
  return index >= 0 && cellRect(index).contains(point) ? index : -1;
}

int GridLayout::nearestIndex(QPoint point) const {
  if (m_itemCount == 0) {
    return -1;
  }
  const int row = std::clamp((point.y() - spacing / 2) / rowHeight(), 0, rows() - 1);
  // A guess by the average column width is at most one off.
  const int guess = std::clamp(point.x() * m_columns / m_width, 0, m_columns - 1);
  const auto distance = [&](int column) {
    return std::abs(columnLeft(column) + m_cell.width() / 2 - point.x());
  };
  int best = guess;
  for (const int column : {guess - 1, guess + 1}) {
    if (column >= 0 && column < m_columns && distance(column) < distance(best)) {
      best = column;
    }
  }
  return std::min(row * m_columns + best, m_itemCount - 1);
}

IndexRange GridLayout::rowsBetween(int top, int bottom) const {
  const IndexRange rows = rowsTouching(QRect(QPoint(0, top), QPoint(0, bottom)));
  return rows.empty() ? IndexRange{}
                      : IndexRange{rows.first * m_columns,
                                   std::min((rows.last + 1) * m_columns, m_itemCount) - 1};
}

IndexRange GridLayout::columnsTouching(const QRect& area) const {
  IndexRange touched{0, m_columns - 1};
  while (touched.first < m_columns &&
         columnLeft(touched.first) + m_cell.width() - 1 < area.left()) {
    ++touched.first;
  }
  while (touched.last >= 0 && columnLeft(touched.last) > area.right()) {
    --touched.last;
  }
  return touched;
}

IndexRange GridLayout::rowsTouching(const QRect& area) const {
  if (m_itemCount == 0 || area.bottom() < spacing) {
    return {};
  }
  // The first row whose lower edge is at or below the top, the last one that begins above the
  // bottom.
  const int top = std::max(area.top() - spacing - m_cell.height() + 1, 0);
  return {(top + rowHeight() - 1) / rowHeight(),
          std::min((area.bottom() - spacing) / rowHeight(), rows() - 1)};
}

}  // namespace snaplift
