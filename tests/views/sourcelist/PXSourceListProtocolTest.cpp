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

  void sourceListItemWillExpand(const Notification& n) override { hear(n); }
  void sourceListItemDidExpand(const Notification& n) override { hear(n); }
  void sourceListItemWillCollapse(const Notification& n) override { hear(n); }
  void sourceListItemDidCollapse(const Notification& n) override { hear(n); }
  std::optional<bool> sourceListShouldExpandItem(PXSourceList&, OutlineItem) override {
    return allows;
  }
  std::optional<bool> sourceListShouldCollapseItem(PXSourceList&, OutlineItem) override {
    heard.push_back("asked");
    return allows;
  }

private:
  void hear(const Notification& n) {
    const auto* item = n.value<OutlineItem>("item");
    ASSERT_TRUE(item);
    heard.push_back(std::string(n.name.substr(std::string_view("PXSourceList").size())) + " " +
                    item->as<Entry>()->title.toStdString());
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
  list.reloadData();
  EXPECT_THAT(delegate.heard, IsEmpty()) << "not even asked, and expanded already";
  source.root.children.push_front({"A", {"new"}});
  list.reloadData();
  EXPECT_EQ(list.numberOfRows(), 6);
}

TEST_F(ProtocolTest, expansionIsAskedAboutAndToldAndOutlivesAReload) {
  ExpansionListener delegate;
  list.setDelegate(&delegate);
  list.setDataSource(&source);
  list.show();
  const auto clickTriangle = [&] {
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.frameOfOutlineCellAtRow(1).center().toPoint());
    return list.numberOfRows();
  };
  EXPECT_EQ(clickTriangle(), 3);
  EXPECT_EQ(clickTriangle(), 2);
  EXPECT_THAT(delegate.heard, ElementsAre("ItemWillExpand B", "ItemDidExpand B", "asked",
                                          "ItemWillCollapse B", "ItemDidCollapse B"));
  delegate.heard.clear();
  delegate.allows = false;
  EXPECT_EQ(clickTriangle(), 2);
  delegate.allows = true;
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, centreOfRow(list, 1));
  EXPECT_EQ(list.numberOfRows(), 2) << "only the triangle opens";
  EXPECT_THAT(delegate.heard, IsEmpty());
  EXPECT_EQ(clickTriangle(), 3);
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
  list.selectRowIndexesByExtendingSelection({1}, false);
  EXPECT_THAT(first.heard, ElementsAre("SelectionDidChange"));
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

TEST_F(ProtocolTest, rowsAreDraggedAndDropped) {
  class Source : public PlainSource {
  public:
    std::vector<OutlineItem> dragged;
    std::pair<OutlineItem, int> dropped;
    std::optional<bool> sourceListWriteItemsToPasteboard(PXSourceList&,
                                                         const std::vector<OutlineItem>& items,
                                                         QMimeData& pasteboard) override {
      dragged = items;
      pasteboard.setText("dragged");
      return true;
    }
    std::optional<Qt::DropAction> sourceListValidateDropProposedItemProposedChildIndex(
        PXSourceList&, const OutlineDraggingInfo& info, OutlineItem, int index) override {
      return info.pasteboard.hasText() && index >= 0 ? Qt::CopyAction : Qt::IgnoreAction;
    }
    std::optional<bool> sourceListAcceptDropItemChildIndex(PXSourceList&,
                                                           const OutlineDraggingInfo&,
                                                           OutlineItem item, int index) override {
      dropped = {item, index};
      return true;
    }
  } answers;
  answers.root.children = twoGroups();
  list.setDataSource(&answers);
  list.expandItemExpandChildren(nullptr, true);
  QAbstractItemModel& model = *list.model();
  const QModelIndex group = model.index(0, 0);
  const std::unique_ptr<QMimeData> data(model.mimeData({model.index(1, 0, group)}));
  ASSERT_TRUE(data);
  Entry& entry = answers.root.children[0];
  EXPECT_THAT(answers.dragged, ElementsAre(OutlineItem(&entry.children[1])));
  EXPECT_FALSE(model.canDropMimeData(data.get(), Qt::CopyAction, -1, -1, group));
  EXPECT_TRUE(model.canDropMimeData(data.get(), Qt::CopyAction, 1, 0, group));
  EXPECT_TRUE(model.dropMimeData(data.get(), Qt::CopyAction, 1, 0, group));
  EXPECT_EQ(answers.dropped, std::pair(OutlineItem(&entry), 1));
  list.setDataSource(&source);
  EXPECT_EQ(list.model()->mimeData({list.model()->index(0, 0)}), nullptr);
}

}  // namespace
}  // namespace snaplift
