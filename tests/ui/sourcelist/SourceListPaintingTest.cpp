#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QVBoxLayout>
#include <cmath>

#include <gtest/gtest.h>

#include "SourceListContent.h"
#include "toolkit/ActivityIndicator.h"
#include "ui/sourcelist/SourceListGeometry.h"

// Pictures of rows at scale factor 1, compared at points of plain colour: glyphs differ between
// machines.

namespace snaplift {
namespace {

using sourceListDrawing::badgeColors;

TEST(BadgeColors, everyCase) {
  const QColor accent(1, 2, 3);
  const QColor own(200, 60, 60);
  const QColor ownText(0, 0, 1);
  const QColor none;
  const struct {
    bool selected, visible, active;
    QColor fill, text, expectedFill, expectedText;
  } cases[] = {
      {true, true, true, own, ownText, Qt::white, accent},
      {true, true, false, own, ownText, Qt::white, {153, 169, 203}},
      {true, false, true, own, ownText, Qt::white, {170, 170, 170}},
      {true, false, false, own, ownText, Qt::white, {170, 170, 170}},
      {false, true, true, own, ownText, own, ownText},
      {false, true, false, own, none, own, Qt::white},
      {false, true, false, none, ownText, {152, 168, 202}, ownText},
      {false, false, false, own, ownText, {180, 180, 180}, Qt::white},
  };
  for (const auto& each : cases) {
    const auto colors =
        badgeColors({each.selected, each.visible, each.active}, each.fill, each.text, accent);
    EXPECT_EQ(colors.fill, each.expectedFill);
    EXPECT_EQ(colors.text, each.expectedText);
  }
}

QPixmap filled(int width, int height, const QColor& color) {
  QPixmap picture(width, height);
  picture.fill(color);
  return picture;
}

class WatchedList : public ORBSourceList {
public:
  using ORBSourceList::animateWithTimer;
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

TEST_F(PaintingTest, badgesAreRoundAndInPlace) {
  entry(1).badge = 7;
  const QImage image = picture();
  const QColor background = image.pixelColor(200, 30);
  EXPECT_EQ(image.pixelColor(276, 30), QColor(152, 168, 202));
  EXPECT_EQ(image.pixelColor(291, 30), QColor(152, 168, 202));
  EXPECT_EQ(image.pixelColor(284, 23), QColor(152, 168, 202)) << "the topmost line";
  EXPECT_EQ(image.pixelColor(284, 36), QColor(152, 168, 202)) << "the lowest";
  for (const QPoint outside : {QPoint(284, 22), QPoint(284, 37), QPoint(272, 30), QPoint(295, 30),
                               QPoint(273, 23), QPoint(294, 36)}) {
    EXPECT_EQ(image.pixelColor(outside), background) << outside.x() << ',' << outside.y();
  }
}

TEST_F(PaintingTest, badgesFollowSelectionAndWindow) {
  entry(1).badge = 7;
  entry(1).badgeFill = QColor(200, 60, 60);
  EXPECT_EQ(badgeFill(), QColor(200, 60, 60));
  select(1);
  EXPECT_EQ(badgeFill(), QColor(Qt::white));
  EXPECT_EQ(at(270, 30), highlight);
  deactivate();
  EXPECT_EQ(badgeFill(), QColor(Qt::white));
  list.deselectAll();
  EXPECT_EQ(badgeFill(), QColor(180, 180, 180));
}

// The digits' colour: the pixels that differ from a white badge lie between white and that colour,
// so the darkest channel tells which one it is.
TEST_F(PaintingTest, digitsOfASelectedBadgeFollowTheKeyboard) {
  entry(1).badge = 88888888;
  select(1);
  const auto darkest = [&] {
    const QImage image = picture();
    QColor result = Qt::white;
    for (int y = 24; y < 36; ++y) {
      for (int x = 250; x < 285; ++x) {
        const QColor color = image.pixelColor(x, y);
        if (color.red() < result.red()) {
          result = color;
        }
      }
    }
    return result;
  };
  const QColor focused = darkest();
  EXPECT_LT(focused.red() + 60, focused.blue()) << "the highlight's blue";
  other.setFocus();
  const QColor unfocused = darkest();
  EXPECT_GE(unfocused.red(), 153 - 2);
  EXPECT_GT(unfocused.blue(), unfocused.red());
  deactivate();
  const QColor hidden = darkest();
  EXPECT_GE(hidden.red(), 170 - 2);
  EXPECT_NEAR(hidden.red(), hidden.blue(), 2);
}

TEST_F(PaintingTest, iconsKeepToTheirRules) {
  QPixmap quarters = filled(32, 32, Qt::red);
  {
    QPainter painter(&quarters);
    painter.fillRect(16, 16, 16, 16, Qt::green);
  }
  entry(1).icon = filled(8, 8, Qt::blue);
  entry(2).icon = quarters;
  entry(4).icon = filled(8, 40, Qt::blue);
  const QImage image = picture();
  const QColor background = image.pixelColor(20, 30);
  const auto expect = [&](int x, int y, const QColor& color) {
    EXPECT_EQ(image.pixelColor(x, y), color) << x << ',' << y;
  };
  // 8 by 8, in the middle of its box at 36, 22.
  expect(40, 26, Qt::blue);
  expect(47, 33, Qt::blue);
  expect(39, 30, background);
  expect(48, 30, background);
  expect(44, 25, background);
  expect(44, 34, background);
  // 32 by 32, reduced to its box at 36, 42.
  expect(37, 43, Qt::red);
  expect(50, 43, Qt::red);
  expect(50, 56, Qt::green);
  expect(35, 50, background);
  expect(52, 50, background);
  expect(44, 41, background);
  expect(44, 58, background);
  // 8 by 40, out of its box at 36, 82 above and below.
  expect(44, 70, Qt::blue);
  expect(44, 109, Qt::blue);
  expect(44, 69, background);
  expect(44, 110, background);
  expect(39, 90, background);
}

// Twelve spokes, drawn ten times as large, so that their middles are plain: each by its angle
// clockwise from the top in steps of 30 degrees.
std::vector<int> spokeLevels(int step, const QColor& spokes, const QColor& background) {
  QImage image(200, 200, QImage::Format_RGB32);
  image.fill(background);
  QPainter painter(&image);
  painter.scale(10, 10);
  ActivitySpokes().draw(painter, QPointF(10, 10), step, spokes);
  painter.end();
  std::vector<int> levels;
  for (int i = 0; i < 12; ++i) {
    const double angle = i * M_PI / 6;
    const QPointF point = QPointF(100, 100) + 60 * QPointF(std::sin(angle), -std::cos(angle));
    levels.push_back(image.pixelColor(point.toPoint()).red());
  }
  return levels;
}

TEST(Spokes, fadeBehindTheLeadingOne) {
  const struct {
    QColor spokes, background;
  } greys[] = {{QColor(51, 51, 51), Qt::white}, {Qt::white, QColor(20, 20, 20)}};
  for (const auto& grey : greys) {
    for (const int step : {12, 13}) {
      const std::vector<int> levels = spokeLevels(step, grey.spokes, grey.background);
      for (int i = 0; i < 12; ++i) {
        const double opacity = 1 - 0.25 * std::sqrt(i);
        const double expected = grey.background.red() * (1 - opacity) + grey.spokes.red() * opacity;
        const int clockwise = (step - i + 12) % 12;
        EXPECT_NEAR(levels[static_cast<std::size_t>(clockwise)], expected, 1.5)
            << "step " << step << ", spoke " << i;
      }
    }
  }
}

TEST(Spokes, reachFromTheInnerToTheOuterRadius) {
  QImage image(200, 200, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.scale(10, 10);
  ActivitySpokes().draw(painter, QPointF(10, 10), 12, Qt::black);
  painter.end();
  const auto isDark = [&](int x, int y) { return image.pixelColor(x, y).red() < 40; };
  EXPECT_TRUE(isDark(100, 100 - 76) && isDark(100, 100 - 44)) << "both ends";
  EXPECT_TRUE(isDark(100, 100 - 80)) << "the round cap";
  EXPECT_FALSE(isDark(100, 100 - 86) || isDark(100, 100 - 34));
  EXPECT_TRUE(isDark(100 - 5, 40) && isDark(100 + 5, 40));
  EXPECT_FALSE(isDark(100 - 8, 40) || isDark(100 + 8, 40)) << "1.28 wide";
}

// In its row the spinner is 16 across: the point at radius 6 is compared with the one opposite.
TEST_F(PaintingTest, spinnersInTheirRows) {
  entry(1).processing = true;
  const auto difference = [&](const QPointF& bright, const QPointF& faint) {
    const QImage image = picture();
    return qGray(image.pixel(bright.toPoint())) - qGray(image.pixel(faint.toPoint()));
  };
  const QPointF centre(283 - 0.5, 30 - 0.5);  // of pixels
  const QPointF up = centre + QPointF(0, -6);
  const QPointF down = centre + QPointF(0, 6);
  const QPointF oneOClock = centre + QPointF(3, -5.2);
  const QPointF sevenOClock = centre + QPointF(-3, 5.2);

  EXPECT_LT(difference(up, down), -40) << "step 12, dark";
  list.animateWithTimer();
  list.stopAnimating();
  EXPECT_EQ(list.spinState(), 1.0);
  select(1);
  EXPECT_GT(difference(up, down), 40) << "step 12, white";
  list.animateWithTimer();
  EXPECT_GT(difference(oneOClock, sevenOClock), 40) << "step 13, white";
  deactivate();
  EXPECT_LT(difference(oneOClock, sevenOClock), -20) << "step 13, dark";
}

TEST_F(PaintingTest, onADarkBackgroundTheDarkSpinnerGetsALightGround) {
  window.setPalette(QPalette(QColor(40, 40, 40), QColor(40, 40, 40)));
  entry(1).processing = true;
  EXPECT_EQ(at(283, 30), QColor(152, 168, 202)) << "the middle, where no spoke is";
  EXPECT_EQ(at(283 - 12, 30), QColor(40, 40, 40));
}

TEST_F(PaintingTest, aProcessingRowShowsOnlyTheSpinner) {
  entry(1).rightSideIcon = filled(18, 18, Qt::red);
  EXPECT_EQ(at(275, 22), QColor(Qt::red));
  EXPECT_EQ(at(291, 38), QColor(Qt::red));
  EXPECT_NE(at(273, 30), QColor(Qt::red));
  EXPECT_NE(at(292, 30), QColor(Qt::red));
  entry(1).processing = true;
  EXPECT_NE(at(275, 22), QColor(Qt::red));
  EXPECT_EQ(at(283, 30), at(200, 30)) << "the spinner's middle";
}

TEST_F(PaintingTest, hoveringShowsTheOtherIcon) {
  entry(1).rightSideIcon = filled(18, 18, Qt::red);
  entry(1).hoveringIcon = filled(18, 18, Qt::green);
  EXPECT_EQ(at(283, 30), QColor(Qt::red));
  QTest::mouseMove(list.viewport(), QPoint(283, 30));
  EXPECT_EQ(at(283, 30), QColor(Qt::green));
  QTest::mouseMove(list.viewport(), QPoint(200, 30));
  EXPECT_EQ(at(283, 30), QColor(Qt::red));
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
