#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SourceListContent.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SelectionTest : public TwoGroupsTest {
protected:
  void select(const RowIndexes& rows, bool extend = false) {
    list.selectRowIndexesByExtendingSelection(rows, extend);
  }
};

TEST_F(SelectionTest, operationsLeaveGroupsOut) {
  const struct {
    RowIndexes before;
    RowIndexes requested;
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
    select(each.requested, each.extend);
    EXPECT_EQ(selected(), each.after) << testing::PrintToString(each.requested);
  }
}

TEST_F(SelectionTest, changesAreToldOnce) {
  select({1});
  select({1});
  select({0});
  EXPECT_THAT(delegate.heard, ElementsAre("SelectionDidChange"));
}

TEST_F(SelectionTest, clicks) {
  clickRow(list, 2);
  EXPECT_EQ(selected(), RowIndexes{2});
  EXPECT_THAT(delegate.heard, ElementsAre("SelectionIsChanging", "SelectionDidChange"));
  clickRow(list, 3);
  EXPECT_EQ(selected(), RowIndexes{2}) << "a group";
  clickRow(list, 4, Qt::ShiftModifier);
  EXPECT_EQ(selected(), (RowIndexes{2, 4})) << "a range over a group";
  clickRow(list, 1, Qt::ControlModifier);
  EXPECT_EQ(selected(), (RowIndexes{1, 2, 4}));
  clickRow(list, 2, Qt::ControlModifier);
  EXPECT_EQ(selected(), (RowIndexes{1, 4}));
  clickRow(list, 4);
  EXPECT_EQ(selected(), RowIndexes{4}) << "one of several";
}

TEST_F(SelectionTest, clicksOnGroupsAndOnNothing) {
  clickRow(list, 0);
  EXPECT_THAT(selected(), IsEmpty());
  EXPECT_THAT(delegate.heard, IsEmpty());
  const QPoint below(20, list.viewport()->height() - 2);
  select({1});
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, below);
  EXPECT_THAT(selected(), IsEmpty());
  select({1});
  list.setAllowsEmptySelection(false);
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, below);
  EXPECT_EQ(selected(), RowIndexes{1});
  clickRow(list, 1, Qt::ControlModifier);
  EXPECT_EQ(selected(), RowIndexes{1});
}

TEST_F(SelectionTest, aRightPressSelectsNothing) {
  select({1});
  QTest::mouseClick(list.viewport(), Qt::RightButton, {}, centreOfRow(list, 2));
  EXPECT_EQ(selected(), RowIndexes{1});
}

TEST_F(SelectionTest, withoutMultipleSelectionOneRowStaysOne) {
  list.setAllowsMultipleSelection(false);
  clickRow(list, 1);
  clickRow(list, 2, Qt::ShiftModifier);
  EXPECT_EQ(selected(), RowIndexes{2});
  clickRow(list, 4, Qt::ControlModifier);
  EXPECT_EQ(selected(), RowIndexes{4});
  select({1, 2});
  EXPECT_EQ(selected(), RowIndexes{1});
  select({2}, true);
  EXPECT_EQ(selected(), RowIndexes{2});
}

class ProposalDelegate : public Listener {
public:
  std::vector<RowIndexes> proposals;
  std::optional<RowIndexes> answer;
  OutlineItem refused;

  std::optional<bool> sourceListShouldSelectItem(PXSourceList&, OutlineItem item) override {
    return item != refused;
  }
  std::optional<RowIndexes> sourceListSelectionIndexesForProposedSelection(
      PXSourceList&, const RowIndexes& proposed) override {
    proposals.push_back(proposed);
    return answer;
  }
};

TEST_F(SelectionTest, theDelegateAnswersProposals) {
  ProposalDelegate proposals;
  list.setDelegate(&proposals);
  clickRow(list, 3);
  EXPECT_THAT(proposals.proposals, IsEmpty()) << "a group, with nothing selected";
  clickRow(list, 1);
  EXPECT_THAT(proposals.proposals, ElementsAre(RowIndexes{1}));
  proposals.answer = RowIndexes{4};
  clickRow(list, 2);
  EXPECT_EQ(selected(), RowIndexes{4});
  proposals.answer = RowIndexes{0, 3};
  clickRow(list, 2);
  EXPECT_EQ(selected(), RowIndexes{4}) << "groups only: the old selection stays";
  proposals.answer = RowIndexes{};
  clickRow(list, 2);
  EXPECT_THAT(selected(), IsEmpty());
  proposals.answer.reset();
  proposals.refused = &source.root.children[0].children[1];
  clickRow(list, 2);
  EXPECT_THAT(selected(), IsEmpty());
  select({2});
  EXPECT_EQ(selected(), RowIndexes{2}) << "operations ask nobody";
}

// Reloads: the row numbers stay, and what they now show is mended.

TEST_F(SelectionTest, aReloadKeepsASelectedRow) {
  select({2});
  delegate.heard.clear();
  list.reloadData();
  EXPECT_EQ(selected(), RowIndexes{2});
  EXPECT_THAT(delegate.heard, IsEmpty());
}

TEST_F(SelectionTest, aReloadMovesASelectionOffAGroup) {
  select({4});
  source.root.children[0].children.push_back("a3");  // row 4 becomes group B
  delegate.heard.clear();
  list.reloadData();
  EXPECT_EQ(list.itemAtRow(4), OutlineItem(&source.root.children[1]));
  EXPECT_EQ(selected(), RowIndexes{3});
  EXPECT_THAT(delegate.heard, ElementsAre("SelectionDidChange"));
}

TEST_F(SelectionTest, aReloadDeselectsWhereNoRowIsAbove) {
  for (const bool allowsEmpty : {true, false}) {
    list.setAllowsEmptySelection(allowsEmpty);
    source.root.children = twoGroups();
    list.reloadData();
    select({1});
    source.root.children[0].children.clear();  // rows 0 and 1 are groups
    list.reloadData();
    EXPECT_THAT(selected(), IsEmpty()) << allowsEmpty;
  }
}

TEST_F(SelectionTest, aReloadSelectsTheFirstRowWhereEmptyIsNotAllowed) {
  list.reloadData();
  EXPECT_THAT(selected(), IsEmpty());
  source.root.children.push_front("empty");
  list.setAllowsEmptySelection(false);
  list.reloadData();
  EXPECT_EQ(selected(), RowIndexes{2});
  source.root.children.clear();
  list.reloadData();
  EXPECT_THAT(selected(), IsEmpty());
}

TEST_F(SelectionTest, aReloadThatLosesSelectedRowsTells) {
  select({2, 4});
  delegate.heard.clear();
  source.root.children.pop_back();
  list.reloadData();
  EXPECT_EQ(selected(), RowIndexes{2});
  EXPECT_THAT(delegate.heard, ElementsAre("SelectionDidChange"));
}

TEST_F(SelectionTest, closingABranchDeselectsWhatItHides) {
  list.setDelegate(nullptr);
  select({1, 4});
  list.collapseItem(&source.root.children[0]);
  EXPECT_EQ(selected(), RowIndexes{2}) << "b1, two rows higher";
  list.setAllowsEmptySelection(false);
  list.expandItemExpandChildren(&source.root.children[0], false);
  list.collapseItem(&source.root.children[1]);
  EXPECT_EQ(selected(), RowIndexes{2}) << "a2, the nearest row above";
}

}  // namespace
}  // namespace snaplift
