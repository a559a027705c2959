#include <QLineEdit>
#include <QMimeData>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "SourceListContent.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Every notification of expansion, and the items that they name.
class ExpansionListener : public PXSourceListDelegate {
public:
  std::vector<std::string> heard;
  bool allows = true;

  void sourceListItemWillExpand(const Notification& notification) override { hear(notification); }
  void sourceListItemDidExpand(const Notification& notification) override { hear(notification); }
  void sourceListItemWillCollapse(const Notification& notification) override { hear(notification); }
  void sourceListItemDidCollapse(const Notification& notification) override { hear(notification); }
  std::optional<bool> sourceListShouldExpandItem(PXSourceList&, OutlineItem) override {
    return allows;
  }
  std::optional<bool> sourceListShouldCollapseItem(PXSourceList&, OutlineItem) override {
    heard.push_back("asked");
    return allows;
  }

private:
  void hear(const Notification& notification) {
    const auto* item = notification.value<OutlineItem>("item");
    ASSERT_TRUE(item);
    heard.push_back(std::string(notification.name.substr(std::string_view("PXSourceList").size())) +
                    " " + item->as<Entry>()->title.toStdString());
  }
};

class ProtocolTest : public testing::Test {
protected:
  ProtocolTest() {
    source.root.children = twoGroups();
    list.resize(250, 200);
  }
  Entry& group(int index) { return source.root.children[static_cast<std::size_t>(index)]; }

  PlainSource source;
  PXSourceList list;
};

TEST_F(ProtocolTest, withoutADataSourceItIsEmpty) {
  EXPECT_EQ(list.numberOfGroups(), 0u);
  EXPECT_EQ(list.numberOfRows(), 0);
  list.setDataSource(&source);
  EXPECT_EQ(list.numberOfGroups(), 2u);
  EXPECT_EQ(list.numberOfRows(), 2);
  list.setDataSource(nullptr);
  EXPECT_EQ(list.numberOfRows(), 0);
  list.show();
  QCoreApplication::processEvents();
}

TEST_F(ProtocolTest, whatIsNotImplementedHasItsDefault) {
  PXSourceListDelegate nothing;
  for (auto* delegate : {static_cast<PXSourceListDelegate*>(nullptr), &nothing}) {
    list.setDelegate(delegate);
    list.setDataSource(&source);
    const OutlineItem item = &group(0);
    EXPECT_FALSE(list.isGroupAlwaysExpanded(item));
    EXPECT_FALSE(list.itemHasBadge(item));
    EXPECT_EQ(list.badgeValueForItem(item), 9223372036854775807);
    EXPECT_FALSE(list.itemHasIcon(item));
    EXPECT_EQ(list.sizeOfBadgeAtRow(0), QSizeF(0, 0));
    EXPECT_EQ(list.rectOfRow(0).height(), list.rowHeight());
    list.expandItemExpandChildren(item, false);
    clickRow(list, 1);
    EXPECT_EQ(list.selectedRowIndexes(), RowIndexes{1});
    list.collapseItem(item);
    EXPECT_EQ(list.numberOfRows(), 2);
  }
}

TEST_F(ProtocolTest, aBadgeWithoutAValueHasNone) {
  class Source : public PlainSource {
    std::optional<bool> sourceListItemHasBadge(PXSourceList&, OutlineItem) override { return true; }
  } badges;
  badges.root.children = twoGroups();
  list.setDataSource(&badges);
  EXPECT_TRUE(list.itemHasBadge(&badges.root.children[0]));
  EXPECT_EQ(list.badgeValueForItem(&badges.root.children[0]), PXSourceListDataSource::notFound);
}

TEST_F(ProtocolTest, groupItemsAreTheTopLevel) {
  list.setDataSource(&source);
  list.expandItemExpandChildren(nullptr, true);
  EXPECT_TRUE(list.isGroupItem(&group(1)));
  EXPECT_FALSE(list.isGroupItem(&group(1).children[0]));
  Entry stranger;
  EXPECT_FALSE(list.isGroupItem(&stranger));
  EXPECT_FALSE(list.isGroupItem(nullptr));
  EXPECT_EQ(list.levelForItem(&stranger), -1);
}

TEST_F(ProtocolTest, alwaysExpandedGroupsStayOpen) {
  class Delegate : public ExpansionListener {
    std::optional<bool> sourceListIsGroupAlwaysExpanded(PXSourceList&, OutlineItem item) override {
      return item.as<Entry>()->title == "A";
    }
  } delegate;
  list.setDelegate(&delegate);
  list.setDataSource(&source);
  EXPECT_EQ(list.numberOfRows(), 4);
  EXPECT_THAT(delegate.heard, ElementsAre("ItemWillExpand A", "ItemDidExpand A"));
  delegate.heard.clear();
  list.collapseItem(&group(0));
  EXPECT_EQ(list.numberOfRows(), 4);
  EXPECT_THAT(delegate.heard, IsEmpty()) << "not even asked";
  list.reloadData();
  EXPECT_THAT(delegate.heard, IsEmpty()) << "it was expanded already";
  source.root.children.push_front({"A", {"new"}});
  list.reloadData();
  EXPECT_EQ(list.numberOfRows(), 6);
}

TEST_F(ProtocolTest, expansionIsAskedAboutAndTold) {
  ExpansionListener delegate;
  list.setDelegate(&delegate);
  list.setDataSource(&source);
  list.show();
  const QPoint triangle = list.frameOfOutlineCellAtRow(1).center().toPoint();
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, triangle);
  EXPECT_EQ(list.numberOfRows(), 3);
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, triangle);
  EXPECT_EQ(list.numberOfRows(), 2);
  EXPECT_THAT(delegate.heard, ElementsAre("ItemWillExpand B", "ItemDidExpand B", "asked",
                                          "ItemWillCollapse B", "ItemDidCollapse B"));
  delegate.heard.clear();
  delegate.allows = false;
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, triangle);
  EXPECT_EQ(list.numberOfRows(), 2);
  EXPECT_THAT(delegate.heard, IsEmpty());
  clickRow(list, 1);
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, centreOfRow(list, 1));
  EXPECT_EQ(list.numberOfRows(), 2) << "only the triangle opens";
}

TEST_F(ProtocolTest, aReloadKeepsWhatWasExpanded) {
  ExpansionListener delegate;
  list.setDelegate(&delegate);
  list.setDataSource(&source);
  list.expandItemExpandChildren(&group(1), false);
  delegate.heard.clear();
  group(1).children.push_back("b2");
  list.reloadData();
  EXPECT_EQ(list.numberOfRows(), 4);
  EXPECT_THAT(delegate.heard, IsEmpty());
}

TEST_F(ProtocolTest, subscriptionsMoveWithTheDelegate) {
  Listener first;
  Listener second;
  list.setDelegate(&first);
  list.setDataSource(&source);
  PXSourceList otherList;
  otherList.setDelegate(&second);
  otherList.setDataSource(&source);
  list.selectRowIndexesByExtendingSelection({1}, false);
  EXPECT_THAT(first.heard, ElementsAre("SelectionDidChange"));
  EXPECT_THAT(second.heard, IsEmpty()) << "another sidebar's";
  list.setDelegate(&second);
  list.selectRowIndexesByExtendingSelection({2}, false);
  EXPECT_EQ(first.heard.size(), 1u);
  EXPECT_THAT(second.heard, ElementsAre("SelectionDidChange"));
  list.setDelegate(nullptr);
  list.selectRowIndexesByExtendingSelection({1}, false);
  EXPECT_EQ(second.heard.size(), 1u);
}

TEST_F(ProtocolTest, aDelegateMayDropItselfWhileItIsTold) {
  class Delegate : public PXSourceListDelegate {
  public:
    PXSourceList* list = nullptr;
    int told = 0;
    void sourceListSelectionDidChange(const Notification&) override {
      ++told;
      list->setDelegate(nullptr);
      list->reloadData();
    }
  } delegate;
  delegate.list = &list;
  list.setDelegate(&delegate);
  list.setDataSource(&source);
  list.expandItemExpandChildren(nullptr, true);
  clickRow(list, 1);
  EXPECT_EQ(delegate.told, 1);
}

// What goes through to the data source and the delegate as it is.
class EverythingSource : public PlainSource {
public:
  QVariant edited;
  std::vector<OutlineItem> dragged;
  OutlineItem dropItem;
  int dropIndex = -2;

  void sourceListSetObjectValueForItem(PXSourceList&, const QVariant& value,
                                       OutlineItem item) override {
    edited = value;
    item.as<Entry>()->title = value.toString();
  }
  std::optional<OutlineItem> sourceListItemForPersistentObject(PXSourceList&,
                                                               const QVariant& object) override {
    for (Entry& each : root.children) {
      if (each.title == object.toString()) {
        return &each;
      }
    }
    return OutlineItem();
  }
  std::optional<QVariant> sourceListPersistentObjectForItem(PXSourceList&,
                                                            OutlineItem item) override {
    return item.as<Entry>()->title;
  }
  std::optional<bool> sourceListWriteItemsToPasteboard(PXSourceList&,
                                                       const std::vector<OutlineItem>& items,
                                                       QMimeData& pasteboard) override {
    dragged = items;
    pasteboard.setText("dragged");
    return true;
  }
  std::optional<Qt::DropAction> sourceListValidateDropProposedItemProposedChildIndex(
      PXSourceList&, const OutlineDraggingInfo& info, OutlineItem, int childIndex) override {
    return info.pasteboard.hasText() && childIndex >= 0 ? Qt::CopyAction : Qt::IgnoreAction;
  }
  std::optional<bool> sourceListAcceptDropItemChildIndex(PXSourceList&, const OutlineDraggingInfo&,
                                                         OutlineItem item,
                                                         int childIndex) override {
    dropItem = item;
    dropIndex = childIndex;
    return true;
  }
};

TEST_F(ProtocolTest, editing) {
  EverythingSource everything;
  everything.root.children = twoGroups();
  list.setDataSource(&everything);
  list.expandItemExpandChildren(nullptr, true);
  list.show();
  list.selectRowIndexesByExtendingSelection({1}, false);
  QTest::keyClick(&list, Qt::Key_F2);
  EXPECT_EQ(list.editedRow(), 1);
  auto* editor = list.findChild<QLineEdit*>();
  ASSERT_TRUE(editor);
  EXPECT_EQ(editor->geometry().left(), static_cast<int>(list.frameOfCellAtColumnRow(0, 1).left()));
  QTest::keyClicks(editor, "renamed");
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_TRUE(QTest::qWaitFor([&] { return list.editedRow() < 0; }));
  EXPECT_EQ(everything.edited, "renamed");

  class Delegate : public PXSourceListDelegate {
    std::optional<bool> sourceListShouldEditItem(PXSourceList&, OutlineItem) override {
      return false;
    }
  } refuses;
  list.setDelegate(&refuses);
  QTest::keyClick(&list, Qt::Key_F2);
  EXPECT_EQ(list.editedRow(), -1);
}

TEST_F(ProtocolTest, dragsAndDrops) {
  EverythingSource everything;
  everything.root.children = twoGroups();
  list.setDataSource(&everything);
  list.expandItemExpandChildren(nullptr, true);
  QAbstractItemModel& model = *list.model();
  const QModelIndex groupA = model.index(0, 0);
  const std::unique_ptr<QMimeData> data(model.mimeData({model.index(1, 0, groupA)}));
  ASSERT_TRUE(data);
  EXPECT_THAT(everything.dragged,
              ElementsAre(OutlineItem(&everything.root.children[0].children[1])));
  EXPECT_FALSE(model.canDropMimeData(data.get(), Qt::CopyAction, -1, -1, groupA));
  EXPECT_TRUE(model.canDropMimeData(data.get(), Qt::CopyAction, 1, 0, groupA));
  EXPECT_TRUE(model.dropMimeData(data.get(), Qt::CopyAction, 1, 0, groupA));
  EXPECT_EQ(everything.dropItem, OutlineItem(&everything.root.children[0]));
  EXPECT_EQ(everything.dropIndex, 1);

  list.setDataSource(&source);
  QAbstractItemModel& plain = *list.model();
  EXPECT_EQ(plain.mimeData({plain.index(0, 0)}), nullptr);
  EXPECT_FALSE(plain.canDropMimeData(data.get(), Qt::CopyAction, 1, 0, plain.index(0, 0)));
  EXPECT_FALSE(plain.dropMimeData(data.get(), Qt::CopyAction, 1, 0, plain.index(0, 0)));
}

TEST_F(ProtocolTest, expansionOutlivesTheRun) {
  EverythingSource everything;
  everything.root.children = twoGroups();
  list.setDataSource(&everything);
  list.expandItemExpandChildren(&everything.root.children[1], false);
  const QVariantList names = list.persistentExpandedItems();
  EXPECT_EQ(names, QVariantList{"B"});
  PXSourceList nextRun;
  nextRun.setDataSource(&everything);
  nextRun.expandPersistentItems(names);
  EXPECT_EQ(nextRun.numberOfRows(), 3);
}

TEST_F(ProtocolTest, cellsAndHeights) {
  class Delegate : public PXSourceListDelegate {
  public:
    OutlineCell cell;
    std::vector<QString> shown;
    std::optional<double> sourceListHeightOfRowByItem(PXSourceList&, OutlineItem item) override {
      return item.as<Entry>()->title == "A" ? std::optional(31.0) : std::nullopt;
    }
    std::optional<OutlineCell*> sourceListDataCellForItem(PXSourceList&,
                                                          OutlineItem item) override {
      return item.as<Entry>()->title == "B" ? std::optional(&cell) : std::nullopt;
    }
    void sourceListWillDisplayCellForItem(PXSourceList&, OutlineCell& each, OutlineItem) override {
      shown.push_back(each.objectValue().toString());
    }
  } delegate;
  list.setDelegate(&delegate);
  list.setDataSource(&source);
  list.setRowHeight(20);
  EXPECT_EQ(list.rectOfRow(0), QRectF(0, 0, list.viewport()->width(), 31));
  EXPECT_EQ(list.rectOfRow(1), QRectF(0, 31, list.viewport()->width(), 20));
  EXPECT_EQ(&list.preparedCellAtColumnRow(0, 1), &delegate.cell);
  EXPECT_NE(&list.preparedCellAtColumnRow(0, 0), &delegate.cell);
  EXPECT_THAT(delegate.shown, ElementsAre("B", "A"));
}

}  // namespace
}  // namespace snaplift
