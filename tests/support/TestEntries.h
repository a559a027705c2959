#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>
#include <cstdint>
#include <deque>
#include <initializer_list>
#include <optional>

#include "views/sourcelist/ORBSourceListDataSource.h"

namespace snaplift::test {

// A group or a row of a sidebar, and what its data source answers about it.
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

// The four required operations, over a tree of entries whose root is not shown.
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
  Entry& entry(OutlineItem item) {
    auto* entry = item.as<Entry>();
    return entry ? *entry : root;
  }
};

using PlainSource = Entries<PXSourceListDataSource>;

// And all that is about the look of rows.
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

}  // namespace snaplift::test
