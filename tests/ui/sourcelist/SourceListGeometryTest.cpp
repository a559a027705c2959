#include <gtest/gtest.h>

#include "SourceListContent.h"
#include "ui/sourcelist/SourceListGeometry.h"

namespace snaplift {
namespace {

namespace geometry = sourceListGeometry;

TEST(SourceListGeometry, iconFrames) {
  const QRectF box(36, 2, 16, 16);
  const struct {
    QSizeF picture;
    QRectF frame;
  } cases[] = {
      {{16, 16}, box},
      {{32, 32}, box},
      {{32, 16}, box},
      {{8, 8}, {40, 6, 8, 8}},
      {{8, 40}, {40, -10, 8, 40}},
      {{40, 8}, {24, 6, 40, 8}},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(geometry::iconFrame(box, each.picture), each.frame) << each.picture.width();
  }
}

TEST(SourceListGeometry, badgesGrowWithTheirText) {
  EXPECT_EQ(geometry::badgeSize(6), QSizeF(22, 14));
  EXPECT_EQ(geometry::badgeSize(12), QSizeF(22, 14));
  EXPECT_EQ(geometry::badgeSize(30), QSizeF(40, 14));
}

class RowGeometry : public testing::TestWithParam<double> {
protected:
  RowGeometry() {
    source.root.children = {{"A", {{"plain"}, {"badge"}, {"icon"}, {"busy"}}}};
    auto& rows = source.root.children[0].children;
    rows[1].badge = 7;
    rows[2].badge = 7;
    rows[2].icon = QPixmap();
    rows[3].processing = true;
    list.setRowHeight(GetParam());
    list.setIndentationPerLevel(16);
    list.setDelegate(&delegate);
    list.setDataSource(&source);
    list.resize(300, 200);
    list.show();
  }

  double titleY(int row) {
    return list.rectOfRow(row).center().y() -
           list.preparedCellAtColumnRow(0, row).cellSize().height() / 2;
  }
  QRectF frame(int row) { return list.frameOfCellAtColumnRow(0, row); }

  FullSource source;
  Listener delegate;
  ORBSourceList list;
};

TEST_P(RowGeometry, rowsAndTitles) {
  const double height = GetParam();
  EXPECT_EQ(list.rectOfRow(2), QRectF(0, 2 * height, 300, height));
  const struct {
    int row;
    double x;
    double width;
  } cases[] = {
      {0, 7, 293},   // a group that is always expanded
      {1, 34, 261},  // neither icon nor badge: up to 5 before the right edge
      {2, 34, 239},  // a badge of 22, from 273
      {3, 54, 219},  // the same with an icon
      {4, 34, 243},  // a spinner's room: 23 before the right edge
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.row);
    EXPECT_EQ(frame(each.row),
              QRectF(each.x, titleY(each.row), each.width,
                     list.preparedCellAtColumnRow(0, each.row).cellSize().height()));
  }
  EXPECT_EQ(geometry::badgeFrame(list.rectOfRow(2), list.sizeOfBadgeAtRow(2)),
            QRectF(273, 2 * height + height / 2 - 7, 22, 14));
  const QRectF box = geometry::iconBox(frame(3), list.iconSize());
  EXPECT_EQ(box, QRectF(36, 3 * height + height / 2 - 8, 16, 16));
}

TEST_P(RowGeometry, rightSide) {
  const double height = GetParam();
  const double top = 4 * height;
  EXPECT_EQ(list.sizeOfBadgeAtRow(4), QSizeF(18, 18));
  EXPECT_EQ(geometry::spinnerCentre(list.rectOfRow(4)), QPointF(283, top + height - 10));
  EXPECT_EQ(geometry::rightSideIconFrame(list.rectOfRow(4)),
            QRectF(274, top + height / 2 - 9, 18, 18));
}

INSTANTIATE_TEST_SUITE_P(Heights, RowGeometry, testing::Values(20.0, 24.0));

// A group that may collapse keeps the outline's own triangle and title; below the top level the
// triangle moves to the level's own indentation.
TEST(SourceListTriangles, standWhereTheGroupAllowsThem) {
  FullSource source;
  source.root.children = {{"A", {{"inner", {"leaf"}}}}};
  ORBSourceList list;
  list.setIndentationPerLevel(16);
  list.setDataSource(&source);
  list.resize(300, 200);
  OutlineView plain;
  plain.setIndentationPerLevel(16);
  list.expandItemExpandChildren(&source.root.children[0], false);

  const QRectF group = list.frameOfOutlineCellAtRow(0);
  EXPECT_EQ(group, list.OutlineView::frameOfOutlineCellAtRow(0));
  EXPECT_FALSE(group.isEmpty());
  EXPECT_EQ(list.frameOfCellAtColumnRow(0, 0).x(),
            list.OutlineView::frameOfCellAtColumnRow(0, 0).x());
  const QRectF inner = list.frameOfOutlineCellAtRow(1);
  EXPECT_EQ(inner,
            QRectF(QPointF(16, list.OutlineView::frameOfOutlineCellAtRow(1).y()), group.size()));

  Listener alwaysExpanded;
  list.setDelegate(&alwaysExpanded);
  EXPECT_EQ(list.frameOfOutlineCellAtRow(0), QRectF());
  EXPECT_EQ(list.frameOfCellAtColumnRow(0, 0).x(), 7);
}

TEST(SourceListIconSize, fitsTheRow) {
  PXSourceList list;
  EXPECT_EQ(list.iconSize(), QSizeF(16, 16));
  list.setRowHeight(20);
  const struct {
    QSizeF given;
    QSizeF kept;
  } cases[] = {{{32, 40}, {16, 20}}, {{10, 20}, {10, 20}}, {{40, 12}, {40, 12}}};
  for (const auto& each : cases) {
    list.setIconSize(each.given);
    EXPECT_EQ(list.iconSize(), each.kept);
  }
}

}  // namespace
}  // namespace snaplift
