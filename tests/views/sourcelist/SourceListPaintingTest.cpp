#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "SourceListContent.h"
#include "views/sourcelist/SourceListGeometry.h"
#include "widgets/desktop/SelectionColors.h"

// Pictures of rows at scale factor 1, compared at points of plain colour.

namespace snaplift {
namespace {

QPixmap filled(int width, int height, const QColor& color) {
  QPixmap picture(width, height);
  picture.fill(color);
  return picture;
}

class WatchedList : public ORBSourceList {
public:
  using ORBSourceList::colorsOfBadge;
};

class PaintingTest : public testing::Test {
protected:
  PaintingTest() {
    QPalette palette(QColor(239, 239, 239), QColor(239, 239, 239));
    palette.setColor(QPalette::Highlight, highlight);
    window.setPalette(palette);
    source.root.children = {{"A", {"", "", "", ""}}};
    list.setRowHeight(20);
    list.setIndentationPerLevel(16);
    list.setDelegate(&delegate);
    list.setDataSource(&source);
    auto* layout = new QVBoxLayout(&window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(&list);
    layout->addWidget(&other);
    window.resize(300, 200);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    list.setFocus();
  }

  // The application has no active window any more.
  void deactivate() {
    {
      QWidget another;
      another.show();
      another.activateWindow();
      EXPECT_TRUE(QTest::qWaitForWindowActive(&another));
    }
    EXPECT_TRUE(QTest::qWaitFor([] { return !QApplication::activeWindow(); }));
  }
  Entry& entry(int row) { return *list.itemAtRow(row).as<Entry>(); }
  void select(int row) { list.selectRowIndexesByExtendingSelection({row}, false); }
  QImage picture() { return list.viewport()->grab().toImage(); }
  QColor at(int x, int y) { return picture().pixelColor(x, y); }
  // The left end of row 1's badge, beside its digits.
  QColor badgeFill() { return at(276, 30); }

  const QColor highlight = QColor(52, 118, 200);
  FullSource source;
  Listener delegate;
  QWidget window;
  WatchedList list;
  QLineEdit other;
};

TEST_F(PaintingTest, badgesFollowSelectionKeyboardAndWindow) {
  using sourceListDrawing::BadgeColors;
  entry(1).badge = 7;
  entry(1).badgeFill = QColor(200, 60, 60);
  EXPECT_EQ(badgeFill(), QColor(200, 60, 60));
  select(1);
  EXPECT_EQ(badgeFill(), QColor(Qt::white));
  EXPECT_EQ(at(270, 30), highlight);
  EXPECT_EQ(list.colorsOfBadge(1), (BadgeColors{Qt::white, highlight}));
  other.setFocus();
  EXPECT_NE(at(270, 30), highlight) << "the keys go elsewhere";
  EXPECT_EQ(list.colorsOfBadge(1), (BadgeColors{Qt::white, QColor(153, 169, 203)}));
  deactivate();
  EXPECT_EQ(list.colorsOfBadge(1), (BadgeColors{Qt::white, QColor(170, 170, 170)}));
  list.deselectAll();
  EXPECT_EQ(badgeFill(), QColor(180, 180, 180));
}

TEST_F(PaintingTest, aLargeIconIsReducedToItsBox) {
  QPixmap quarters = filled(32, 32, Qt::red);
  QPainter(&quarters).fillRect(16, 16, 16, 16, Qt::green);
  entry(2).icon = quarters;
  const QImage image = picture();
  EXPECT_EQ(image.pixelColor(37, 43), QColor(Qt::red));
  EXPECT_EQ(image.pixelColor(50, 56), QColor(Qt::green));
  for (const QPoint outside : {QPoint(35, 50), QPoint(52, 50), QPoint(44, 41), QPoint(44, 58)}) {
    EXPECT_EQ(image.pixelColor(outside), image.pixelColor(20, 30)) << outside.x();
  }
}

// Whatever is under the spinner: its middle, where no spoke is, and its leading spoke differ.
TEST_F(PaintingTest, spinnersAreSeenOnEveryGround) {
  entry(1).processing = true;
  for (const QColor ground : {QColor(40, 40, 40), QColor(255, 235, 59), QColor(225, 240, 255)}) {
    QPalette palette(ground, ground);
    palette.setColor(QPalette::Highlight, ground);
    window.setPalette(palette);
    for (const bool isSelected : {false, true}) {
      list.deselectAll();
      if (isSelected) {
        select(1);
      }
      list.stopAnimating();
      const QImage image = picture();
      EXPECT_GT(contrast(image.pixelColor(283, 30), image.pixelColor(282, 24)), 1.7)
          << ground.name().toStdString() << isSelected;
    }
  }
}

TEST_F(PaintingTest, rightSideIconsFollowTheMouseAndGiveWayToTheSpinner) {
  entry(1).rightSideIcon = filled(18, 18, Qt::red);
  entry(1).hoveringIcon = filled(18, 18, Qt::green);
  EXPECT_EQ(at(275, 22), QColor(Qt::red));
  EXPECT_EQ(at(291, 38), QColor(Qt::red));
  EXPECT_NE(at(273, 30), QColor(Qt::red));
  EXPECT_NE(at(292, 30), QColor(Qt::red));
  QTest::mouseMove(list.viewport(), QPoint(283, 30));
  EXPECT_EQ(at(283, 30), QColor(Qt::green));
  QTest::mouseMove(list.viewport(), QPoint(200, 30));
  EXPECT_EQ(at(283, 30), QColor(Qt::red));
  entry(1).processing = true;
  EXPECT_NE(at(275, 22), QColor(Qt::red));
  EXPECT_EQ(at(283, 30), at(200, 30)) << "the spinner's middle";
}

TEST_F(PaintingTest, rightToLeftIsTheMirrorImage) {
  entry(1).badge = 7;
  entry(1).icon = filled(16, 16, Qt::blue);
  entry(2).processing = true;
  select(2);
  const QImage leftToRight = picture();
  window.setLayoutDirection(Qt::RightToLeft);
  const QImage rightToLeft = picture();
  for (const QPoint point : {QPoint(276, 30), QPoint(273, 23), QPoint(36, 22), QPoint(51, 37),
                             QPoint(35, 30), QPoint(52, 30), QPoint(150, 50)}) {
    EXPECT_EQ(rightToLeft.pixelColor(299 - point.x(), point.y()), leftToRight.pixelColor(point))
        << point.x() << ',' << point.y();
  }
}

}  // namespace
}  // namespace snaplift
