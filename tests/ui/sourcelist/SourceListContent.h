#pragma once

#include <QCoreApplication>
#include <QMenu>
#include <QTest>
#include <deque>
#include <initializer_list>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ui/sourcelist/ORBSourceList.h"

// For messages of failed comparisons; found beside the types.
inline void PrintTo(const QColor& color, std::ostream* out) {
  *out << color.name().toStdString();
}
inline void PrintTo(const QRectF& rect, std::ostream* out) {
  *out << rect.x() << ',' << rect.y() << ' ' << rect.width() << 'x' << rect.height();
}

namespace snaplift {

// A group or a row of a test's sidebar, and what its data source answers about it.
struct Entry {
  Entry(const char* name = "", std::initializer_list<Entry> below = {})
      : title(name), children(below) {}

  QString title;
  std::deque<Entry> children;  // a deque: entries keep their places when others are added

  std::optional<std::int64_t> badge;
  std::optional<QColor> badgeFill;
  std::optional<QColor> badgeText;
  std::optional<QPixmap> icon;
  bool processing = false;
  std::optional<QPixmap> rightSideIcon;
  std::optional<QPixmap> hoveringIcon;
};

// The four required operations.
template <typename Base>
class Entries : public Base {
public:
  Entry root;

  std::size_t sourceListNumberOfChildrenOfItem(PXSourceList&, OutlineItem item) override {
    return entry(item).children.size();
  }
  OutlineItem sourceListChildOfItem(PXSourceList&, std::size_t index, OutlineItem item) override {
    return &entry(item).children.at(index);
  }
  QVariant sourceListObjectValueForItem(PXSourceList&, OutlineItem item) override {
    return entry(item).title;
  }
  bool sourceListIsItemExpandable(PXSourceList&, OutlineItem item) override {
    return !entry(item).children.empty();
  }

protected:
  Entry& entry(OutlineItem item) { return item ? *item.as<Entry>() : root; }
};

using PlainSource = Entries<PXSourceListDataSource>;

// All that is about the look of rows.
class FullSource : public Entries<ORBSourceListDataSource> {
public:
  std::optional<bool> sourceListItemHasBadge(PXSourceList&, OutlineItem item) override {
    return entry(item).badge.has_value();
  }
  std::optional<std::int64_t> sourceListBadgeValueForItem(PXSourceList&,
                                                          OutlineItem item) override {
    return entry(item).badge;
  }
  std::optional<QColor> sourceListBadgeTextColorForItem(PXSourceList&, OutlineItem item) override {
    return entry(item).badgeText;
  }
  std::optional<QColor> sourceListBadgeBackgroundColorForItem(PXSourceList&,
                                                              OutlineItem item) override {
    return entry(item).badgeFill;
  }
  std::optional<bool> sourceListItemHasIcon(PXSourceList&, OutlineItem item) override {
    return entry(item).icon.has_value();
  }
  std::optional<QPixmap> sourceListIconForItem(PXSourceList&, OutlineItem item) override {
    return entry(item).icon;
  }
  std::optional<bool> sourceListItemHasRightSideIcon(PXSourceList&, OutlineItem item) override {
    return entry(item).processing || entry(item).rightSideIcon;
  }
  std::optional<bool> sourceListItemIsProcessing(PXSourceList&, OutlineItem item) override {
    return entry(item).processing;
  }
  std::optional<QPixmap> sourceListRightSideIconForItem(PXSourceList&, OutlineItem item) override {
    return entry(item).rightSideIcon;
  }
  std::optional<QPixmap> sourceListRightSideHoveringIconForItem(PXSourceList&,
                                                                OutlineItem item) override {
    return entry(item).hoveringIcon;
  }
};

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
