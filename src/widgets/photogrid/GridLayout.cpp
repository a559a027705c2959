#include "widgets/photogrid/GridLayout.h"

#include <algorithm>

namespace snaplift {
namespace {

constexpr int spacing = 14;  // between two cells at least, and around the grid

}  // namespace

GridLayout::GridLayout(int itemCount, const GridMeasures& measures)
    : m_sections{{0, 0, 0}, {std::clamp(itemCount, 0, maxItems), 0, 0}} {
  arrange(measures);
}

GridLayout::GridLayout(const std::vector<int>& counts, const GridMeasures& measures)
    : m_isGrouped(true), m_sections{{0, 0, 0}} {
  m_sections.reserve(counts.size() + 1);
  for (const int count : counts) {
    const int item = m_sections.back().item;
    if (item < maxItems) {
      m_sections.push_back({item + std::clamp(count, 0, maxItems - item), 0, 0});
    }
  }
  arrange(measures);
}

void GridLayout::arrange(const GridMeasures& measures) {
  m_measures = measures;
  m_measures.width = std::max(measures.width, 1);
  m_measures.cell = {std::max(measures.cell.width(), 1),
                     std::clamp(measures.cell.height(), 1, maxCellHeight)};
  m_measures.headerHeight = std::clamp(measures.headerHeight, 0, maxHeaderHeight);
  m_columns = std::max(1, (m_measures.width - spacing) / (m_measures.cell.width() + spacing));
  for (std::size_t i = 1; i < m_sections.size(); ++i) {
    const Section& before = m_sections[i - 1];
    Section& section = m_sections[i];
    const int rows = (section.item - before.item + m_columns - 1) / m_columns;
    section.row = before.row + rows;
    section.top = rows == 0 ? before.top : rowTop(before, section.row);
  }
}

// The last section of which `part` is not beyond `value`.
const GridLayout::Section& GridLayout::sectionWith(int Section::*part, int value) const {
  const auto next =
      std::upper_bound(m_sections.begin() + 1, m_sections.end() - 1, value,
                       [part](int wanted, const Section& each) { return wanted < each.*part; });
  return *(next - 1);
}

int GridLayout::rowHeight() const {
  return m_measures.cell.height() + spacing;
}

// Also of the row behind the section's last: where the section ends.
int GridLayout::rowTop(const Section& section, int row) const {
  return section.top + headerHeight() + spacing + (row - section.row) * rowHeight();
}

// Of a grid that runs from left to right.
int GridLayout::columnLeft(int column) const {
  // The space on both sides of each column is equal but for the rounding, which is spread.
  const int width = m_measures.cell.width();
  const int spare = std::max(m_measures.width - m_columns * width, 2 * spacing);
  return (column + 1) * spare / (m_columns + 1) + column * width;
}

int GridLayout::mirrored(int x) const {
  return m_measures.isMirrored ? m_measures.width - 1 - x : x;
}

QRect GridLayout::cellRect(int index) const {
  const Section& section = sectionWith(&Section::item, index);
  const int left = columnLeft(columnOf(index));
  const int right = left + m_measures.cell.width() - 1;
  return {QPoint(std::min(mirrored(left), mirrored(right)), rowTop(section, rowOf(index))),
          m_measures.cell};
}

int GridLayout::indexAt(QPoint point) const {
  const int index = nearestIndex(point);
  return index >= 0 && cellRect(index).contains(point) ? index : -1;
}

int GridLayout::nearestIndex(QPoint point) const {
  if (itemCount() == 0) {
    return -1;
  }
  // A header is above the rows of its own group. Half the space between two rows is each one's.
  const Section& section = sectionWith(&Section::top, point.y());
  const int row = std::max(lastRowFrom(point.y() + spacing / 2), section.row);
  // A guess by the average column width is at most one off.
  const int x = mirrored(point.x());
  const int guess = std::clamp(x * m_columns / m_measures.width, 0, m_columns - 1);
  const auto distance = [&](int column) {
    return std::abs(columnLeft(column) + m_measures.cell.width() / 2 - x);
  };
  int best = guess;
  for (const int column : {guess - 1, guess + 1}) {
    if (column >= 0 && column < m_columns && distance(column) < distance(best)) {
      best = column;
    }
  }
  const IndexRange items = itemsOfRow(row);
  return std::min(items.first + best, items.last);
}

IndexRange GridLayout::rowsBetween(int top, int bottom) const {
  const IndexRange rows = rowsTouching(top, bottom);
  return rows.empty() ? IndexRange{}
                      : IndexRange{itemsOfRow(rows.first).first, itemsOfRow(rows.last).last};
}

int GridLayout::rowOf(int index) const {
  const Section& section = sectionWith(&Section::item, index);
  return section.row + (index - section.item) / m_columns;
}

int GridLayout::columnOf(int index) const {
  return (index - sectionWith(&Section::item, index).item) % m_columns;
}

IndexRange GridLayout::itemsOfRow(int row) const {
  const Section& section = sectionWith(&Section::row, row);
  const int first = section.item + (row - section.row) * m_columns;
  return {first, std::min(first + m_columns, (&section + 1)->item) - 1};
}

int GridLayout::lastRowFrom(int y) const {
  const Section& section = sectionWith(&Section::top, y);
  const int into = y - rowTop(section, section.row);
  return into < 0 ? section.row - 1
                  : std::min(section.row + into / rowHeight(), (&section + 1)->row - 1);
}

int GridLayout::groupOf(int index) const {
  return static_cast<int>(&sectionWith(&Section::item, index) - m_sections.data());
}

int GridLayout::groupAt(int y) const {
  return static_cast<int>(&sectionWith(&Section::top, y) - m_sections.data());
}

IndexRange GridLayout::itemsOfGroup(int group) const {
  const Section* section = &m_sections[static_cast<std::size_t>(group)];
  return {section->item, (section + 1)->item - 1};
}

QRect GridLayout::headerRect(int group, int top) const {
  const Section* section = &m_sections[static_cast<std::size_t>(group)];
  const int last = (section + 1)->top - headerHeight();
  return {0, std::clamp(top, section->top, last), m_measures.width, headerHeight()};
}

IndexRange GridLayout::columnsTouching(const QRect& area) const {
  const int left = std::min(mirrored(area.left()), mirrored(area.right()));
  const int right = std::max(mirrored(area.left()), mirrored(area.right()));
  IndexRange touched{0, m_columns - 1};
  while (touched.first < m_columns &&
         columnLeft(touched.first) + m_measures.cell.width() - 1 < left) {
    ++touched.first;
  }
  while (touched.last >= 0 && columnLeft(touched.last) > right) {
    --touched.last;
  }
  return touched;
}

// From behind the last row that ends above the top to the last one that begins above the bottom.
IndexRange GridLayout::rowsTouching(int top, int bottom) const {
  return {lastRowFrom(top - m_measures.cell.height()) + 1, lastRowFrom(bottom)};
}

}  // namespace snaplift
