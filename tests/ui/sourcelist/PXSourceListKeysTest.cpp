#include <QContextMenuEvent>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SourceListContent.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class KeysTest : public TwoGroupsTest {
protected:
  // The selection after `key` was pressed with `rows` selected.
  RowIndexes after(const RowIndexes& rows, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    list.deselectAll();
    list.selectRowIndexesByExtendingSelection(rows, false);
    press(key, modifiers);
    return selected();
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(&list, key, modifiers);
  }
};

TEST_F(KeysTest, arrowsPassOverGroups) {
  EXPECT_EQ(after({1}, Qt::Key_Down), RowIndexes{2});
  EXPECT_EQ(after({2}, Qt::Key_Down), RowIndexes{4});
  EXPECT_EQ(after({4}, Qt::Key_Down), RowIndexes{4});
  EXPECT_EQ(after({4}, Qt::Key_Up), RowIndexes{2});
  EXPECT_EQ(after({1}, Qt::Key_Up), RowIndexes{1});
}

TEST_F(KeysTest, shiftAndSeveralRowsAreTheOutlinesOwn) {
  EXPECT_EQ(after({2}, Qt::Key_Down, Qt::ShiftModifier), (RowIndexes{2, 4}));
  press(Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(selected(), RowIndexes{2});
  press(Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(selected(), (RowIndexes{1, 2})) << "from the row that an operation selected";
  EXPECT_EQ(after({1, 2}, Qt::Key_Down), RowIndexes{2}) << "from the focused row";
}

TEST_F(KeysTest, endsAndPagesStopAtRows) {
  EXPECT_EQ(after({4}, Qt::Key_Home), RowIndexes{1});
  EXPECT_EQ(after({1}, Qt::Key_End), RowIndexes{4});
  EXPECT_EQ(after({4}, Qt::Key_PageUp), RowIndexes{1});
  EXPECT_EQ(after({1}, Qt::Key_PageDown), RowIndexes{4});
  EXPECT_EQ(after({1}, Qt::Key_End, Qt::ShiftModifier), (RowIndexes{1, 2, 4}));
}

TEST_F(KeysTest, withNothingSelectedArrowsReachEveryRow) {
  list.setFocus();
  EXPECT_THAT(after({}, Qt::Key_Home, Qt::ControlModifier), IsEmpty());
  EXPECT_EQ(list.focusedRow(), 0);
  press(Qt::Key_Down);
  EXPECT_EQ(selected(), RowIndexes{1});
}

TEST_F(KeysTest, leftClimbsThroughTheGroups) {
  EXPECT_EQ(after({4}, Qt::Key_Left), RowIndexes{4});
  EXPECT_EQ(list.focusedRow(), 3);
  press(Qt::Key_Left);
  EXPECT_EQ(list.focusedRow(), 0);
  press(Qt::Key_Left);
  EXPECT_EQ(list.focusedRow(), 0);
  press(Qt::Key_Right);
  EXPECT_EQ(selected(), RowIndexes{1});
  EXPECT_EQ(list.numberOfRows(), 5) << "always expanded";
}

TEST_F(KeysTest, groupsOpenAndCloseByKey) {
  list.setDelegate(nullptr);
  after({1}, Qt::Key_Left);
  press(Qt::Key_Left);
  EXPECT_EQ(list.numberOfRows(), 3);
  EXPECT_THAT(selected(), IsEmpty());
  press(Qt::Key_Right);
  EXPECT_EQ(list.numberOfRows(), 5);
  press(Qt::Key_Space);
  EXPECT_EQ(list.numberOfRows(), 3);
  press(Qt::Key_Plus);
  EXPECT_EQ(list.numberOfRows(), 5);
  press(Qt::Key_Minus);
  press(Qt::Key_Down);
  EXPECT_EQ(list.focusedRow(), 1) << "group B, with nothing selected";
}

TEST_F(KeysTest, rightToLeftSwapsLeftAndRight) {
  list.setLayoutDirection(Qt::RightToLeft);
  after({4}, Qt::Key_Right);
  EXPECT_EQ(list.focusedRow(), 3);
  press(Qt::Key_Left);
  EXPECT_EQ(list.focusedRow(), 4);
}

TEST_F(KeysTest, deleteKeysAreTold) {
  for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace}) {
    list.selectRowIndexesByExtendingSelection({2, 4}, false);
    delegate.heard.clear();
    press(key);
    EXPECT_THAT(delegate.heard, ElementsAre("DeleteKeyPressedOnRows"));
    EXPECT_EQ(delegate.rows, (RowIndexes{2, 4}));
    EXPECT_EQ(selected(), (RowIndexes{2, 4}));
  }
  list.deselectAll();
  delegate.heard.clear();
  press(Qt::Key_Delete);
  EXPECT_THAT(delegate.heard, IsEmpty());
}

TEST_F(KeysTest, typingFindsRowsNotGroups) {
  const int interval = QApplication::keyboardInputInterval();
  source.root.children[0].title = "b is a group too";
  source.root.children[0].children[1].title = "a 2";
  list.reloadData();
  const auto type = [&](const char* text) {
    QApplication::setKeyboardInputInterval(0);  // its first key begins anew
    QTest::keyClick(&list, text[0]);
    QApplication::setKeyboardInputInterval(60'000);
    QTest::keyClicks(&list, text + 1);
    return selected();
  };
  EXPECT_EQ(type("b"), RowIndexes{4});
  EXPECT_EQ(type("a"), RowIndexes{1});
  EXPECT_EQ(type("aa"), RowIndexes{1}) << "to the second and on to the first";
  EXPECT_EQ(type("A 2"), RowIndexes{2}) << "the space is typed";
  EXPECT_EQ(type("a1"), RowIndexes{1});
  EXPECT_EQ(type("c"), RowIndexes{1});
  QApplication::setKeyboardInputInterval(interval);
}

// Menus.

class MenuDelegate : public Listener {
public:
  QMenu menu;
  bool answers = true;
  std::vector<OutlineItem> asked;
  std::vector<Qt::MouseButton> buttons;

  std::optional<QMenu*> sourceListMenuForEventItem(PXSourceList&, QMouseEvent& event,
                                                   OutlineItem item) override {
    asked.push_back(item);
    buttons.push_back(event.button());
    EXPECT_EQ(event.type(), QEvent::MouseButtonPress);
    return answers && item ? &menu : nullptr;
  }
};

class MenuTest : public KeysTest {
protected:
  MenuTest() {
    menus.menu.addAction("Reveal");
    own.addAction("Own");
    list.setDelegate(&menus);
  }
  ~MenuTest() override { closeMenus(); }

  void rightPress(const QPoint& point) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, list.viewport()->mapToGlobal(point));
    QApplication::sendEvent(list.viewport(), &event);
  }
  void closeMenus() {
    menus.menu.close();
    own.close();
  }
  OutlineItem itemAt(int row) { return list.itemAtRow(row); }

  MenuDelegate menus;
  QMenu own;
};

TEST_F(MenuTest, aRightPressAsksForTheItemUnderIt) {
  rightPress(centreOfRow(list, 4));
  EXPECT_TRUE(menus.menu.isVisible());
  closeMenus();
  rightPress(centreOfRow(list, 3));
  closeMenus();
  rightPress(QPoint(20, list.viewport()->height() - 2));
  EXPECT_FALSE(menus.menu.isVisible());
  EXPECT_THAT(menus.asked, ElementsAre(itemAt(4), itemAt(3), OutlineItem()));
  EXPECT_THAT(menus.buttons, testing::Each(Qt::RightButton));
}

TEST_F(MenuTest, withoutAnAnswerTheSidebarsOwnMenuComes) {
  list.setMenu(&own);
  menus.answers = false;
  rightPress(centreOfRow(list, 1));
  EXPECT_TRUE(own.isVisible());
  closeMenus();
  list.setDelegate(nullptr);
  rightPress(centreOfRow(list, 1));
  EXPECT_TRUE(own.isVisible());
}

TEST_F(MenuTest, controlAndTheLeftButtonAskToo) {
  clickRow(list, 2, Qt::ControlModifier);
  EXPECT_TRUE(menus.menu.isVisible());
  EXPECT_THAT(menus.buttons, ElementsAre(Qt::LeftButton));
  EXPECT_THAT(selected(), IsEmpty()) << "the delegate's business";
  closeMenus();
  clickRow(list, 2);
  EXPECT_EQ(menus.asked.size(), 1u);
}

TEST_F(MenuTest, keysAskForTheFocusedRow) {
  list.selectRowIndexesByExtendingSelection({4}, false);
  press(Qt::Key_F10, Qt::ShiftModifier);
  EXPECT_TRUE(menus.menu.isVisible());
  closeMenus();
  press(Qt::Key_Left);
  press(Qt::Key_Menu);
  closeMenus();
  EXPECT_THAT(menus.asked, ElementsAre(itemAt(4), itemAt(3)));
  EXPECT_THAT(menus.buttons, testing::Each(Qt::RightButton));
}

}  // namespace
}  // namespace snaplift
