#include <gtest/gtest.h>

#include "SourceListContent.h"
#include "views/sourcelist/SourceListDrawing.h"
#include "views/sourcelist/SourceListGeometry.h"

namespace snaplift {
namespace {

namespace geometry = sourceListGeometry;

TEST(SourceListGeometry, iconsAndBadges) {
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
  for (const auto& [text, badge] : {std::pair{6, 22}, {12, 22}, {30, 40}}) {
    EXPECT_EQ(geometry::badgeSize(text), QSizeF(badge, 14));
  }
  EXPECT_EQ(sourceListDrawing::badgeFont().pixelSize(), 11);
  EXPECT_TRUE(sourceListDrawing::badgeFont().bold());
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

TEST_P(RowGeometry, titlesAndWhatStandsBesideThem) {
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
  const double top = 4 * height;
  EXPECT_EQ(list.sizeOfBadgeAtRow(4), QSizeF(18, 18));
  EXPECT_EQ(geometry::spinnerCentre(list.rectOfRow(4)), QPointF(283, top + height - 10));
  EXPECT_EQ(geometry::rightSideIconFrame(list.rectOfRow(4)),
            QRectF(274, top + height / 2 - 9, 18, 18));
}

INSTANTIATE_TEST_SUITE_P(Heights, RowGeometry, testing::Values(20.0, 24.0));

}  // namespace
}  // namespace snaplift
