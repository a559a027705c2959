#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SourceListContent.h"

// What the user's keys and mouse do to a sidebar, what operations select, and how a reload mends
// the selection. Rows: group A, a1, a2, group B, b1.

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class InputTest : public TwoGroupsTest {
protected:
  void select(const RowIndexes& rows, bool extend = false) {
    list.selectRowIndexesByExtendingSelection(rows, extend);
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(&list, key, modifiers);
  }
};

TEST_F(InputTest, keysSelectAndPassOverGroups) {
  constexpr auto shift = Qt::ShiftModifier;
  const struct {
    RowIndexes before;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    RowIndexes after;
  } cases[] = {
      {{1}, Qt::Key_Down, {}, {2}},
      {{2}, Qt::Key_Down, {}, {4}},
      {{4}, Qt::Key_Down, {}, {4}},
      {{4}, Qt::Key_Up, {}, {2}},
      {{1}, Qt::Key_Up, {}, {1}},
      {{2}, Qt::Key_Down, shift, {2, 4}},
      {{2}, Qt::Key_Up, shift, {1, 2}},
      {{1, 2}, Qt::Key_Down, {}, {2}},  // from the focused row
      {{4}, Qt::Key_Home, {}, {1}},
      {{1}, Qt::Key_End, {}, {4}},
      {{4}, Qt::Key_PageUp, {}, {1}},
      {{1}, Qt::Key_PageDown, {}, {4}},
      {{1}, Qt::Key_End, shift, {1, 2, 4}},
      {{1}, Qt::Key_A, Qt::ControlModifier, {1, 2, 4}},
      {{}, Qt::Key_Home, Qt::ControlModifier, {}},
  };
  list.setFocus();
  for (const auto& each : cases) {
    list.deselectAll();
    select(each.before);
    press(each.key, each.modifiers);
    EXPECT_EQ(selected(), each.after) << testing::PrintToString(each.before) << " " << each.key;
  }
  EXPECT_EQ(list.focusedRow(), 0) << "with nothing selected the keyboard reaches every row";
  press(Qt::Key_Down);
  EXPECT_EQ(selected(), RowIndexes{1});
}

TEST_F(InputTest, leftClimbsThroughTheGroups) {
  select({4});
  for (const int focus : {3, 0, 0}) {
    press(Qt::Key_Left);
    EXPECT_EQ(list.focusedRow(), focus);
    EXPECT_EQ(selected(), RowIndexes{4});
  }
  press(Qt::Key_Right);
  EXPECT_EQ(selected(), RowIndexes{1});
  EXPECT_EQ(list.numberOfRows(), 5) << "always expanded";
  list.setLayoutDirection(Qt::RightToLeft);
  press(Qt::Key_Right);
  EXPECT_EQ(list.focusedRow(), 0);
  press(Qt::Key_Left);
  EXPECT_EQ(list.focusedRow(), 1);
}

TEST_F(InputTest, groupsOpenAndCloseByKey) {
  list.setDelegate(nullptr);
  select({1});
  press(Qt::Key_Left);
  press(Qt::Key_Left);
  EXPECT_THAT(selected(), IsEmpty()) << "hidden";
  EXPECT_EQ(list.numberOfRows(), 3);
  const std::pair<Qt::Key, int> steps[] = {
      {Qt::Key_Right, 5}, {Qt::Key_Space, 3}, {Qt::Key_Plus, 5}, {Qt::Key_Minus, 3}};
  for (const auto& [key, rows] : steps) {
    press(key);
    EXPECT_EQ(list.numberOfRows(), rows) << key;
  }
  press(Qt::Key_Down);
  EXPECT_EQ(list.focusedRow(), 1) << "group B, with nothing selected";
}

TEST_F(InputTest, deleteKeysAreTold) {
  select({2, 4});
  delegate.heard.clear();
  for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace}) {
    press(key);
    EXPECT_EQ(delegate.rows, (RowIndexes{2, 4}));
  }
  EXPECT_THAT(delegate.heard, ElementsAre("DeleteKeyPressedOnRows", "DeleteKeyPressedOnRows"));
  list.deselectAll();
  delegate.heard.clear();
  press(Qt::Key_Delete);
  EXPECT_THAT(delegate.heard, IsEmpty());
}

TEST_F(InputTest, typingFindsRowsNotGroups) {
  source.root.children[0].title = "b is a group too";
  list.reloadData();
  QTest::keyClick(&list, 'b');
  EXPECT_EQ(selected(), RowIndexes{4});
}

TEST_F(InputTest, clicks) {
  constexpr int below = -1;
  const auto shift = Qt::ShiftModifier;
  const auto control = Qt::ControlModifier;
  const struct {
    int row;
    Qt::KeyboardModifiers modifiers;
    RowIndexes after;
  } several[] = {{0, {}, {}},
                 {2, {}, {2}},
                 {3, {}, {2}},
                 {4, shift, {2, 4}},
                 {1, control, {1, 2, 4}},
                 {2, control, {1, 4}},
                 {4, {}, {4}},
                 {below, {}, {}}},
    one[] = {{1, {}, {1}}, {2, shift, {2}}, {4, control, {4}}, {4, control, {4}}, {below, {}, {4}}};
  const auto clickAll = [&](const auto& steps) {
    for (const auto& step : steps) {
      const QPoint point = step.row == below ? QPoint(20, list.viewport()->height() - 2)
                                             : centreOfRow(list, step.row);
      QTest::mouseClick(list.viewport(), Qt::LeftButton, step.modifiers, point);
      EXPECT_EQ(selected(), step.after) << "row " << step.row;
    }
  };
  clickAll(several);
  list.setAllowsMultipleSelection(false);
  list.setAllowsEmptySelection(false);
  clickAll(one);
  QTest::mouseClick(list.viewport(), Qt::RightButton, {}, centreOfRow(list, 2));
  EXPECT_EQ(selected(), RowIndexes{4});
  delegate.heard.clear();
  clickRow(list, 1);
  clickRow(list, 1);
  EXPECT_THAT(delegate.heard, ElementsAre("SelectionIsChanging", "SelectionDidChange"));
}

TEST_F(InputTest, operationsLeaveGroupsOutAndTellOnce) {
  const struct {
    RowIndexes before, requested;
    bool extend;
    RowIndexes after;
  } cases[] = {
      {{1}, {0, 4}, false, {4}},      {{1}, {0, 3}, false, {1}},   {{1}, {}, false, {1}},
      {{1}, {}, true, {1}},           {{1}, {2, 3}, true, {1, 2}}, {{}, {0}, false, {}},
      {{1}, {99, -1, 2}, false, {2}},
  };
  for (const auto& each : cases) {
    list.deselectAll();
    select(each.before);
    delegate.heard.clear();
    select(each.requested, each.extend);
    EXPECT_EQ(selected(), each.after) << testing::PrintToString(each.requested);
    EXPECT_EQ(delegate.heard.size(), each.before == each.after ? 0u : 1u);
  }
  list.setAllowsMultipleSelection(false);
  select({1, 2});
  EXPECT_EQ(selected(), RowIndexes{1});
  select({2}, true);
  EXPECT_EQ(selected(), RowIndexes{2});
}

// A reload keeps the row numbers, and what they now show is mended.
TEST_F(InputTest, reloadsMendTheSelection) {
  using Groups = std::deque<Entry>;
  const struct {
    RowIndexes before;
    bool allowsEmpty;
    Groups after;
    RowIndexes selected;
    bool tells;
  } cases[] = {
      {{2}, true, twoGroups(), {2}, false},
      {{4}, true, {{"A", {"a1", "a2", "a3"}}, {"B", {"b1"}}}, {3}, true},  // off the group
      {{1}, true, {{"A", {}}, {"B", {"b1"}}}, {}, true},                   // no row is above
      {{1}, false, {{"A", {}}, {"B", {"b1"}}}, {}, true},
      {{2, 4}, true, {{"A", {"a1", "a2"}}}, {2}, true},  // row 4 is gone
      {{}, true, twoGroups(), {}, false},
      {{}, false, {"empty", {"A", {"a1"}}}, {2}, true},
      {{}, false, {}, {}, false},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    const auto& each = cases[i];
    list.setAllowsEmptySelection(true);
    source.root.children = twoGroups();
    list.reloadData();
    list.deselectAll();
    select(each.before);
    delegate.heard.clear();
    list.setAllowsEmptySelection(each.allowsEmpty);
    source.root.children = each.after;
    list.reloadData();
    EXPECT_EQ(selected(), each.selected);
    EXPECT_EQ(!delegate.heard.empty(), each.tells);
  }
}

TEST_F(InputTest, closingABranchDeselectsWhatItHides) {
  list.setDelegate(nullptr);
  select({1, 4});
  list.collapseItem(&source.root.children[0]);
  EXPECT_EQ(selected(), RowIndexes{2}) << "b1, two rows higher";
  list.setAllowsEmptySelection(false);
  list.expandItemExpandChildren(&source.root.children[0], false);
  list.collapseItem(&source.root.children[1]);
  EXPECT_EQ(selected(), RowIndexes{2}) << "a2, the nearest row above";
}

TEST_F(InputTest, aControlClickAsksForTheMenuAndSelectsNothing) {
  class Menus : public Listener {
  public:
    QMenu menu;
    std::optional<QMenu*> sourceListMenuForEventItem(PXSourceList&, QMouseEvent&,
                                                     OutlineItem item) override {
      return item.as<Entry>()->title == "a2" ? &menu : nullptr;
    }
  } menus;
  QMenu own;
  for (QMenu* menu : {&menus.menu, &own}) {
    menu->addAction("Reveal");
  }
  list.setDelegate(&menus);
  list.setMenu(&own);
  select({4});
  const auto asksFor = [this](QMenu& expected, const QMenu& other, int row) {
    clickRow(list, row, Qt::ControlModifier);
    EXPECT_TRUE(expected.isVisible() && !other.isVisible()) << row;
    expected.close();
    EXPECT_EQ(selected(), RowIndexes{4});
  };
  asksFor(menus.menu, own, 2);
  asksFor(own, menus.menu, 1);  // the sidebar's own, without an answer and without a delegate
  list.setDelegate(nullptr);
  asksFor(own, menus.menu, 2);
}

}  // namespace
}  // namespace snaplift
