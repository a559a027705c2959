#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <vector>

#include "widgets/thumbnails/IndexRange.h"

namespace snaplift {

// What a grid is laid out by, in device-independent pixels.
struct GridMeasures {
  int width = 1;            // of the view
  QSize cell{1, 1};         // without the space around it
  int headerHeight = 0;     // of the line above a group
  bool isMirrored = false;  // rows run from right to left
};

// Where the cells of a grid stand, by arithmetic alone: nothing is kept for a photo, a few bytes
// for a group, and every answer costs the same with ten photos and with a million. Cells fill rows;
// what a row leaves over is shared out between the columns, so that the grid is as wide as its
// view. Photos may be in groups: each begins a row of its own, below a header as wide as the view.
//
// All rectangles are in content coordinates: the origin is the top left corner of the whole grid,
// as it stands with the view scrolled to its top. Rows are counted through all groups.
class GridLayout {
public:
  // More photos than this are cut off: their positions would leave the range of a scroll bar.
  static constexpr int maxItems = 1'850'000;
  static constexpr int maxCellHeight = 1'040;
  static constexpr int maxHeaderHeight = 72;

  GridLayout() : GridLayout(0, {}) {}
  // Without groups.
  GridLayout(int itemCount, const GridMeasures& measures);
  // The number of photos of each group, in order: at least one group, none of them empty.
  GridLayout(const std::vector<int>& counts, const GridMeasures& measures);

  // Lays the same photos out by other measures. Costs a step for each group.
  void arrange(const GridMeasures& measures);

  int itemCount() const { return m_sections.back().item; }
  int rowHeight() const;
  int contentHeight() const { return m_sections.back().top; }

  QRect cellRect(int index) const;
  // The photo whose cell holds `point`, or -1: between the cells there is none.
  int indexAt(QPoint point) const;
  // The photo nearest to `point`; -1 only where there are no photos.
  int nearestIndex(QPoint point) const;
  // The photos of every row that reaches into [top, bottom].
  IndexRange rowsBetween(int top, int bottom) const;

  int rows() const { return m_sections.back().row; }
  int rowOf(int index) const;
  int columnOf(int index) const;
  IndexRange itemsOfRow(int row) const;
  // The last row that begins at `y` or above; -1 above the first.
  int lastRowFrom(int y) const;

  // 0 without groups; no function below may be called then.
  int groupCount() const { return m_isGrouped ? static_cast<int>(m_sections.size()) - 1 : 0; }
  int groupOf(int index) const;
  // The group whose header or rows are at `y`: the first above them all, the last below.
  int groupAt(int y) const;
  IndexRange itemsOfGroup(int group) const;
  // With the view scrolled down to `top`: the header stays there as long as any row of its group
  // does.
  QRect headerRect(int group, int top) const;
  // From the side of the view to the first column.
  int sideMargin() const { return columnLeft(0); }
  // As high as every header; 0 without groups.
  int headerHeight() const { return m_isGrouped ? m_measures.headerHeight : 0; }

  // Calls `visit(IndexRange)` for each row's run of cells that `area` touches, top to bottom.
  template <typename Visit>
  void forEachRunIn(const QRect& area, Visit&& visit) const {
    const IndexRange columns = columnsTouching(area);
    const IndexRange rows = rowsTouching(area.top(), area.bottom());
    for (int row = rows.first; row <= rows.last && !columns.empty(); ++row) {
      const IndexRange items = itemsOfRow(row);
      const IndexRange run{items.first + columns.first,
                           qMin(items.first + columns.last, items.last)};
      if (!run.empty()) {
        visit(run);
      }
    }
  }

private:
  // Where a group begins: its first photo, its first row, its header's upper edge.
  struct Section {
    int item;
    int row;
    int top;
  };

  const Section& sectionWith(int Section::*part, int value) const;
  int rowTop(const Section& section, int row) const;
  int columnLeft(int column) const;
  int mirrored(int x) const;
  IndexRange columnsTouching(const QRect& area) const;
  IndexRange rowsTouching(int top, int bottom) const;

  GridMeasures m_measures;
  int m_columns = 1;
  bool m_isGrouped = false;
  std::vector<Section> m_sections;  // and where the next one would begin
};

}  // namespace snaplift
