#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include "widgets/thumbnails/IndexRange.h"

namespace snaplift {

// Where the cells of a grid stand, by arithmetic alone: every answer costs the same with ten photos
// and with a million, and nothing is kept for a photo. Cells fill rows from left to right; what a
// row leaves over is shared out between the columns, so that the grid is as wide as its view.
//
// All rectangles are in content coordinates: the origin is the top left corner of the whole grid,
// as it stands with the view scrolled to its top. Units are device-independent pixels.
class GridLayout {
public:
  // More photos than this are cut off: their positions would leave the range of a scroll bar.
  static constexpr int maxItems = 2'000'000;
  static constexpr int maxCellHeight = 1'040;

  GridLayout() = default;
  // `cell` is the size of one cell, without the space around it.
  GridLayout(int itemCount, int width, QSize cell);

  int itemCount() const { return m_itemCount; }
  int columns() const { return m_columns; }
  int rows() const { return (m_itemCount + m_columns - 1) / m_columns; }
  int rowHeight() const;
  int contentHeight() const;

  QRect cellRect(int index) const;
  // The photo whose cell holds `point`, or -1: between the cells there is none.
  int indexAt(QPoint point) const;
  // The photo nearest to `point`; -1 only where there are no photos.
  int nearestIndex(QPoint point) const;
  // The photos of every row that reaches into [top, bottom].
  IndexRange rowsBetween(int top, int bottom) const;

  // Calls `visit(IndexRange)` for each row's run of cells that `area` touches, top to bottom.
  template <typename Visit>
  void forEachRunIn(const QRect& area, Visit&& visit) const {
    const IndexRange columns = columnsTouching(area);
    const IndexRange rows = rowsTouching(area);
    for (int row = rows.first; row <= rows.last && !columns.empty(); ++row) {
      const int start = row * m_columns;
      visit(IndexRange{start + columns.first, qMin(start + columns.last, m_itemCount - 1)});
    }
  }

private:
  int columnLeft(int column) const;
  IndexRange columnsTouching(const QRect& area) const;
  IndexRange rowsTouching(const QRect& area) const;

  int m_itemCount = 0;
  int m_width = 0;
  int m_columns = 1;
  QSize m_cell{1, 1};
};

}  // namespace snaplift
