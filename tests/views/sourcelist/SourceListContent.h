#pragma once

#include <QCoreApplication>
#include <QMenu>
#include <QTest>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/TestEntries.h"
#include "views/sourcelist/ORBSourceList.h"

namespace snaplift {

using test::Entry;
using test::FullSource;
using test::PlainSource;

// Group A with a1 and a2, group B with b1: rows 0 to 4 when all is expanded.
inline std::deque<Entry> twoGroups() {
  return {{"A", {"a1", "a2"}}, {"B", {"b1"}}};
}

// Keeps every group expanded, and writes down what it hears: the notification's name without its
// prefix, and the rows selected at that moment.
class Listener : public PXSourceListDelegate {
public:
  std::vector<std::string> heard;

  std::optional<bool> sourceListIsGroupAlwaysExpanded(PXSourceList&, OutlineItem) override {
    return true;
  }
  void sourceListSelectionDidChange(const Notification& notification) override {
    hear(notification);
  }
  void sourceListSelectionIsChanging(const Notification& notification) override {
    hear(notification);
  }
  void sourceListDeleteKeyPressedOnRows(const Notification& notification) override {
    hear(notification);
    rows = notification.value<RowIndexes>("rows") ? *notification.value<RowIndexes>("rows")
                                                  : RowIndexes();
  }

  RowIndexes rows;

private:
  void hear(const Notification& notification) {
    heard.emplace_back(notification.name.substr(std::string_view("PXSourceList").size()));
  }
};

// A shown sidebar of those two groups, all expanded, in which several rows may be selected.
class TwoGroupsTest : public testing::Test {
protected:
  TwoGroupsTest() {
    source.root.children = twoGroups();
    list.setAllowsMultipleSelection(true);
    list.setDelegate(&delegate);
    list.setDataSource(&source);
    list.resize(250, 200);
    list.show();
  }

  RowIndexes selected() { return list.selectedRowIndexes(); }

  PlainSource source;
  Listener delegate;
  PXSourceList list;
};

inline QPoint centreOfRow(const OutlineView& view, int row) {
  return view.rectOfRow(row).center().toPoint();
}

inline void clickRow(OutlineView& view, int row, Qt::KeyboardModifiers modifiers = {}) {
  QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, centreOfRow(view, row));
}

}  // namespace snaplift
