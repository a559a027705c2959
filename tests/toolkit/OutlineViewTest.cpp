#include <QSignalSpy>
#include <QTest>
#include <list>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "toolkit/OutlineView.h"
#include "toolkit/OutlineViewDataSource.h"
#include "toolkit/OutlineViewDelegate.h"

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
  int titlesAsked = 0;

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
    ++titlesAsked;
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
  void press(Qt::Key key) { QTest::keyClick(&view, key); }

  Leaves source;
  OutlineView view;
};

TEST(OutlineItem, knowsItsTypeAgain) {
  int number = 1;
  double other = 2;
  const OutlineItem item = &number;
  EXPECT_EQ(item.as<int>(), &number);
  EXPECT_EQ(item.as<double>(), nullptr);
  EXPECT_NE(item, OutlineItem(&other));
  EXPECT_EQ(item, OutlineItem(&number));
  const OutlineItem absent = static_cast<int*>(nullptr);
  EXPECT_FALSE(absent);
  EXPECT_EQ(absent.as<int>(), nullptr);
  EXPECT_EQ(absent, OutlineItem());
}

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

TEST_F(OutlineViewTest, keysWalkTheTree) {
  view.selectRowIndexesByExtendingSelection({0}, false);
  press(Qt::Key_Right);
  EXPECT_EQ(rows().size(), 4);
  EXPECT_EQ(view.selectedRowIndexes(), RowIndexes{0});
  press(Qt::Key_Right);
  press(Qt::Key_Down);
  EXPECT_EQ(view.selectedRowIndexes(), RowIndexes{2});
  press(Qt::Key_Left);
  EXPECT_EQ(view.selectedRowIndexes(), RowIndexes{0}) << "the parent";
  press(Qt::Key_Left);
  EXPECT_EQ(rows().size(), 2);
}

TEST_F(OutlineViewTest, scrollingMovesTheRectangles) {
  view.expandItemExpandChildren(nullptr, true);
  view.scrollRowToVisible(5);
  const double top = view.rectOfRow(0).top();
  EXPECT_LT(top, 0);
  EXPECT_EQ(view.rectOfRow(5).top(), top + 100);
  EXPECT_LE(view.rectOfRow(5).bottom(), view.viewport()->height());
  EXPECT_EQ(view.rowAtPoint(view.rectOfRow(5).center()), 5);
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

TEST_F(OutlineViewTest, theColumnMayGrowWithItsRows) {
  source.root.children.front().title = QString(200, 'm');
  view.setAutoresizesOutlineColumn(true);
  view.reloadData();
  QCoreApplication::processEvents();
  EXPECT_GT(view.rectOfRow(0).width(), 500);
  view.setAutoresizesOutlineColumn(false);
  QCoreApplication::processEvents();
  EXPECT_EQ(view.rectOfRow(0).width(), view.viewport()->width());
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
