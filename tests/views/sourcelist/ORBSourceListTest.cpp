#include <QAccessible>
#include <QToolTip>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SourceListContent.h"
#include "views/sourcelist/ORBSourceList.h"
#include "views/sourcelist/SourceListGeometry.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A sidebar that writes down which rows it draws.
class WatchedList : public ORBSourceList {
public:
  std::vector<int> drawn;

  // Draws what is due, and forgets it.
  void drawPending() {
    QCoreApplication::processEvents();
    drawn.clear();
  }

protected:
  void drawRowClipRect(QPainter& painter, int row, const QRectF& clip) override {
    drawn.push_back(row);
    ORBSourceList::drawRowClipRect(painter, row, clip);
  }
};

class ClickListener : public ORBSourceListDelegate {
public:
  std::vector<std::uint64_t> clickedRows;

  std::optional<bool> sourceListIsGroupAlwaysExpanded(PXSourceList&, OutlineItem) override {
    return true;
  }
  void sourceListRightSideIconWasClicked(const Notification& notification) override {
    const auto* row = notification.value<std::uint64_t>("row");
    ASSERT_TRUE(row);
    clickedRows.push_back(*row);
  }
};

class ORBSourceListTest : public testing::Test {
protected:
  ORBSourceListTest() {
    source.root.children = twoGroups();
    list.setRowHeight(20);
    list.setDelegate(&delegate);
    list.setDataSource(&source);
    list.resize(250, 200);
    list.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&list));
    list.drawPending();
  }

  Entry& entry(int row) { return *list.itemAtRow(row).as<Entry>(); }
  void setProcessing(int row, bool processing) {
    entry(row).processing = processing;
    list.reloadItem(&entry(row));
    list.drawPending();
  }
  QPoint iconOf(int row) {
    return sourceListGeometry::rightSideIconFrame(list.rectOfRow(row)).center().toPoint();
  }
  void pointAt(const QPoint& point) { QTest::mouseMove(list.viewport(), point); }
  void addIcon(int row) {
    entry(row).rightSideIcon = QPixmap(18, 18);
    entry(row).hoveringIcon = QPixmap(18, 18);
    list.reloadItem(&entry(row));
    list.drawPending();
  }
  void addManyRows() {
    source.root.children[1].children.resize(50);
    list.reloadData();
  }
  void click(const QPoint& point) { QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, point); }

  FullSource source;
  ClickListener delegate;
  WatchedList list;
};

TEST_F(ORBSourceListTest, rowsShareOneTimerThatTheLastOneStops) {
  EXPECT_FALSE(list.isAnimating());
  setProcessing(1, true);
  setProcessing(4, true);
  EXPECT_TRUE(list.isAnimating());
  EXPECT_THAT(list.animatingRows(), ElementsAre(list.itemAtRow(1), list.itemAtRow(4)));
  EXPECT_TRUE(QTest::qWaitFor([&] { return list.spinState() > 1.12; })) << "by itself";
  EXPECT_THAT(list.drawn, testing::Each(testing::AnyOf(1, 4)));
  setProcessing(1, false);
  EXPECT_THAT(list.animatingRows(), ElementsAre(list.itemAtRow(4)));
  EXPECT_TRUE(list.isAnimating());
  EXPECT_GT(list.spinState(), 1.0);
  setProcessing(4, false);
  EXPECT_FALSE(list.isAnimating());
  EXPECT_EQ(list.spinState(), 1.0);
}

TEST_F(ORBSourceListTest, atRestAndHiddenNothingTurns) {
  const auto* timer = list.findChild<QTimer*>();
  setProcessing(0, true);
  EXPECT_FALSE(list.isAnimating()) << "a group";
  EXPECT_EQ(list.sizeOfBadgeAtRow(0), QSizeF(0, 0));
  setProcessing(1, true);
  EXPECT_EQ(timer->interval(), 50);
  list.hide();
  EXPECT_FALSE(list.isAnimating());
  EXPECT_EQ(list.spinState(), 1.0);
  list.show();
  EXPECT_TRUE(QTest::qWaitFor([&] { return list.isAnimating(); }));
  setProcessing(1, false);
  EXPECT_FALSE(timer->isActive());
  QCoreApplication::processEvents();
  EXPECT_THAT(list.drawn, IsEmpty());
  setProcessing(1, true);
  entry(1).processing = false;
  list.reloadData();
  EXPECT_FALSE(list.isAnimating()) << "a reload starts afresh";
}

// A row that is scrolled away is not drawn and would never learn that its work has ended.
TEST_F(ORBSourceListTest, aRowOutOfSightIsDroppedAndComesBack) {
  addManyRows();
  list.drawPending();
  setProcessing(1, true);
  EXPECT_TRUE(list.isAnimating());
  list.scrollRowToVisible(40);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !list.isAnimating(); }));
  EXPECT_THAT(list.animatingRows(), IsEmpty());
  list.scrollRowToVisible(0);
  EXPECT_TRUE(QTest::qWaitFor([&] { return list.isAnimating(); }));
}

TEST_F(ORBSourceListTest, aClickOnTheHoveredIconIsTold) {
  addIcon(4);
  EXPECT_EQ(list.hoveredRow(), -1);
  click(centreOfRow(list, 0));
  click(centreOfRow(list, 4));
  EXPECT_EQ(list.selectedRowIndexes(), RowIndexes{4}) << "ordinary clicks";
  EXPECT_THAT(delegate.clickedRows, IsEmpty());
  list.selectRowIndexesByExtendingSelection({1}, false);
  list.drawPending();

  pointAt(iconOf(4));
  EXPECT_EQ(list.hoveredRow(), 4);
  QCoreApplication::processEvents();
  EXPECT_THAT(list.drawn, ElementsAre(4));
  click(iconOf(4));
  EXPECT_THAT(delegate.clickedRows, ElementsAre(4u));
  EXPECT_EQ(list.selectedRowIndexes(), RowIndexes{1});

  list.drawPending();
  pointAt(centreOfRow(list, 4));
  EXPECT_EQ(list.hoveredRow(), -1);
  QCoreApplication::processEvents();
  EXPECT_THAT(list.drawn, ElementsAre(4));
  click(centreOfRow(list, 4));
  EXPECT_EQ(delegate.clickedRows.size(), 1u);
  EXPECT_EQ(list.selectedRowIndexes(), RowIndexes{4});
}

TEST_F(ORBSourceListTest, hoveringEndsWithTheIconAndWithTheView) {
  addIcon(2);
  pointAt(iconOf(2));
  EXPECT_EQ(list.hoveredRow(), 2);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(list.viewport(), &leave);
  EXPECT_EQ(list.hoveredRow(), -1);

  pointAt(iconOf(2) - QPoint(1, 0));
  EXPECT_EQ(list.hoveredRow(), 2);
  entry(2).rightSideIcon.reset();
  list.reloadItem(&entry(2));
  list.drawPending();
  EXPECT_EQ(list.hoveredRow(), -1);
  pointAt(iconOf(2) + QPoint(1, 0));
  EXPECT_EQ(list.hoveredRow(), -1);
}

TEST_F(ORBSourceListTest, iconsGoWithTheScrolledRows) {
  addManyRows();
  addIcon(2);
  const QPoint icon = iconOf(2);
  pointAt(icon);
  EXPECT_EQ(list.hoveredRow(), 2);
  list.scrollRowToVisible(40);
  EXPECT_EQ(list.hoveredRow(), -1) << "the icon has moved away from under the mouse";
  list.scrollRowToVisible(0);
  EXPECT_EQ(list.hoveredRow(), 2);
}

// Screen readers.

QStringList namesBelow(QAccessibleInterface* parent) {
  QStringList names;
  for (int i = 0; i < parent->childCount(); ++i) {
    QAccessibleInterface* child = parent->child(i);
    EXPECT_EQ(child->role(), QAccessible::TreeItem);
    EXPECT_EQ(parent->indexOfChild(child), i);
    EXPECT_EQ(child->parent(), parent);
    names << child->text(QAccessible::Name);
  }
  return names;
}

TEST_F(ORBSourceListTest, screenReadersMeetATree) {
  auto* tree = QAccessible::queryAccessibleInterface(&list);
  ASSERT_TRUE(tree);
  EXPECT_EQ(tree->role(), QAccessible::Tree);
  EXPECT_EQ(namesBelow(tree), (QStringList{"A", "B"}));
  EXPECT_EQ(namesBelow(tree->child(0)), (QStringList{"a1", "a2"}));
  EXPECT_EQ(namesBelow(tree->child(0)->child(0)), QStringList());
  const auto group = tree->child(0)->state();
  EXPECT_TRUE(group.expandable && group.expanded && !group.selectable);
  const QPoint middle = list.viewport()->mapToGlobal(centreOfRow(list, 2));
  EXPECT_EQ(tree->childAt(middle.x(), middle.y())->text(QAccessible::Name), "a2");
  EXPECT_TRUE(tree->child(0)->child(1)->rect().contains(middle));
  auto* row = tree->child(0)->child(1);
  entry(2).badge = 7;
  EXPECT_EQ(row->text(QAccessible::Description), "7");
  EXPECT_FALSE(row->state().busy);
  setProcessing(2, true);
  EXPECT_EQ(row->text(QAccessible::Description), "7, Loading...");
  EXPECT_TRUE(row->state().busy);

  class Source : public FullSource {
    std::optional<QString> sourceListDetailsForItem(PXSourceList&, OutlineItem) override {
      return "<b>12:30</b>\n/backups";
    }
  } detailed;
  detailed.root.children = twoGroups();
  list.setDataSource(&detailed);
  EXPECT_EQ(tree->child(0)->child(1)->text(QAccessible::Description), "<b>12:30</b>, /backups");
  QHelpEvent help(QEvent::ToolTip, centreOfRow(list, 2), middle);
  QApplication::sendEvent(list.viewport(), &help);
  EXPECT_TRUE(QToolTip::text().contains("&lt;b&gt;")) << "no markup";
  QToolTip::hideText();
  list.setDataSource(&source);
}

TEST_F(ORBSourceListTest, screenReadersActAndMeetNewRowsAfterAReload) {
  auto* tree = QAccessible::queryAccessibleInterface(&list);
  auto* row = tree->child(1)->child(0);
  row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(list.selectedRowIndexes(), RowIndexes{4});
  EXPECT_TRUE(row->state().selected && row->state().selectable);
  auto* group = tree->child(1);
  EXPECT_FALSE(
      group->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
  list.setDelegate(nullptr);
  group->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_TRUE(group->state().collapsed);
  EXPECT_EQ(group->childCount(), 0);
  EXPECT_TRUE(row->state().invisible);

  source.root.children.assign({"C"});
  list.reloadData();
  EXPECT_EQ(namesBelow(tree), QStringList{"C"});
}

}  // namespace
}  // namespace snaplift
