#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QTest>
#include <QToolTip>
#include <list>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "widgets/outline/OutlineAccessible.h"
#include "widgets/outline/OutlineView.h"
#include "widgets/outline/OutlineViewDataSource.h"
#include "widgets/outline/OutlineViewDelegate.h"

namespace snaplift {
namespace {

using testing::ElementsAre;

// What the sidebar's tests do not reach: rows that are not groups, several levels, the column.

struct Leaf {
  QString title;
  std::list<Leaf> children;
};

class Leaves : public OutlineViewDataSource {
public:
  Leaf root;

  std::size_t outlineViewNumberOfChildrenOfItem(OutlineView&, OutlineItem item) override {
    return leaf(item).children.size();
  }
  OutlineItem outlineViewChildOfItem(OutlineView&, std::size_t index, OutlineItem item) override {
    return &*std::next(leaf(item).children.begin(), static_cast<std::ptrdiff_t>(index));
  }
  bool outlineViewIsItemExpandable(OutlineView&, OutlineItem item) override {
    return !leaf(item).children.empty();
  }
  QVariant outlineViewObjectValueForTableColumnByItem(OutlineView&, OutlineColumn&,
                                                      OutlineItem item) override {
    return leaf(item).title;
  }
  static OutlineItem child(Leaf& parent, int index) {
    return &*std::next(parent.children.begin(), index);
  }

private:
  Leaf& leaf(OutlineItem item) { return item ? *item.as<Leaf>() : root; }
};

class OutlineViewTest : public testing::Test {
protected:
  OutlineViewTest() {
    // a (a1 (a11, a12), a2), b
    source.root.children = {{"a", {{"a1", {{"a11", {}}, {"a12", {}}}}, {"a2", {}}}}, {"b", {}}};
    view.setDataSource(&source);
    view.setRowHeight(20);
    view.reloadData();
    view.resize(200, 100);
    view.show();
  }

  OutlineItem a() { return source.child(source.root, 0); }
  OutlineItem a1() { return source.child(*a().as<Leaf>(), 0); }
  QStringList rows() {
    QStringList titles;
    for (int row = 0; row < view.numberOfRows(); ++row) {
      titles << view.itemAtRow(row).as<Leaf>()->title;
    }
    return titles;
  }

  Leaves source;
  OutlineView view;
};

TEST_F(OutlineViewTest, rowsAndLevelsFollowTheOpenBranches) {
  EXPECT_EQ(rows(), (QStringList{"a", "b"}));
  EXPECT_EQ(view.levelForItem(a1()), -1) << "never shown";
  view.expandItemExpandChildren(a(), false);
  EXPECT_EQ(rows(), (QStringList{"a", "a1", "a2", "b"}));
  view.expandItemExpandChildren(nullptr, true);
  EXPECT_EQ(rows(), (QStringList{"a", "a1", "a11", "a12", "a2", "b"}));
  EXPECT_EQ(view.levelForRow(3), 2);
  EXPECT_EQ(view.rowForItem(a1()), 1);
  view.collapseItem(a());
  EXPECT_EQ(rows(), (QStringList{"a", "b"}));
  EXPECT_EQ(view.rowForItem(a1()), -1);
  EXPECT_EQ(view.levelForItem(a1()), 1);
  view.expandItemExpandChildren(a(), false);
  EXPECT_EQ(rows().size(), 6) << "the branch inside stayed open";
}

TEST_F(OutlineViewTest, whatDoesNotExistAnswersNothing) {
  for (const int row : {-1, 2, 1000}) {
    EXPECT_FALSE(view.itemAtRow(row));
    EXPECT_EQ(view.levelForRow(row), -1);
    EXPECT_EQ(view.rectOfRow(row), QRectF());
    EXPECT_FALSE(view.isRowSelected(row));
  }
  Leaf stranger;
  EXPECT_EQ(view.rowForItem(&stranger), -1);
  view.reloadItem(&stranger);
  view.expandItemExpandChildren(&stranger, true);
  view.collapseItem(&stranger);
  EXPECT_EQ(view.rowAtPoint(QPointF(10, -1)), -1);
  EXPECT_EQ(view.rowAtPoint(QPointF(10, 40)), -1);
  EXPECT_EQ(view.rowAtPoint(QPointF(10, 39.5)), 1);
}

TEST_F(OutlineViewTest, aRowThatGrowsMovesTheOthers) {
  class Delegate : public OutlineViewDelegate {
  public:
    double height = 20;
    double outlineViewHeightOfRowByItem(OutlineView&, OutlineItem) override { return height; }
  } delegate;
  view.setDelegate(&delegate);
  view.reloadData();
  QCoreApplication::processEvents();
  delegate.height = 35.4;
  view.reloadItem(a());
  QCoreApplication::processEvents();
  EXPECT_EQ(view.rectOfRow(1), QRectF(0, 35, view.viewport()->width(), 35));
  EXPECT_EQ(view.visualRect(view.model()->index(1, 0)), view.rectOfRow(1).toRect());
}

// A stranger's words: as long as they like, and looking like markup that opens a file.
TEST_F(OutlineViewTest, titlesAreBoundedPlainText) {
  const QString markup = "<img src='/etc/passwd'>";
  source.root.children.front().title = markup + QString(10'000'000, 'm');
  view.reloadData();
  EXPECT_LT(view.preparedCellAtColumnRow(0, 0).cellSize().width(), 20'000);
  outlineAccessible::install();
  const auto* tree = QAccessible::queryAccessibleInterface(&view);
  EXPECT_LT(tree->child(0)->text(QAccessible::Name).size(), 1'000);
  const QPoint point = view.rectOfRow(0).center().toPoint();
  QHelpEvent help(QEvent::ToolTip, point, view.viewport()->mapToGlobal(point));
  QApplication::sendEvent(view.viewport(), &help);
  EXPECT_TRUE(QToolTip::text().contains(markup.toHtmlEscaped()));
  EXPECT_FALSE(QToolTip::text().contains("<img"));
  EXPECT_LT(QToolTip::text().size(), 1'000);
  QToolTip::hideText();
}

TEST_F(OutlineViewTest, theFocusIsAlwaysSeen) {
  QApplication::setActiveWindow(&view);
  const auto shown = [&] { return view.viewport()->grab().toImage(); };
  view.setFocus();
  view.deselectAll();
  const QImage focused = shown();
  view.clearFocus();
  EXPECT_NE(shown(), focused) << "the ring round a row that is not selected";
}

// Opening one branch of many must not ask for the others.
TEST_F(OutlineViewTest, closedBranchesAreNotAskedFor) {
  class Counting : public Leaves {
  public:
    std::vector<QString> asked;
    std::size_t outlineViewNumberOfChildrenOfItem(OutlineView& view, OutlineItem item) override {
      asked.push_back(item ? item.as<Leaf>()->title : QString("root"));
      return Leaves::outlineViewNumberOfChildrenOfItem(view, item);
    }
  } counting;
  counting.root = source.root;
  view.setDataSource(&counting);
  view.reloadData();
  view.grab();
  EXPECT_THAT(counting.asked, ElementsAre("root"));
}

}  // namespace
}  // namespace snaplift
