#include "samples/sidebar/TestEntries.h"

namespace snaplift::test {

std::optional<bool> FullSource::sourceListItemHasBadge(PXSourceList&, OutlineItem item) {
  return entry(item).badge.has_value();
}

std::optional<std::int64_t> FullSource::sourceListBadgeValueForItem(PXSourceList&,
                                                                    OutlineItem item) {
  return entry(item).badge;
}

std::optional<QColor> FullSource::sourceListBadgeTextColorForItem(PXSourceList&, OutlineItem item) {
  return entry(item).badgeText;
}

std::optional<QColor> FullSource::sourceListBadgeBackgroundColorForItem(PXSourceList&,
                                                                        OutlineItem item) {
  return entry(item).badgeFill;
}

std::optional<bool> FullSource::sourceListItemHasIcon(PXSourceList&, OutlineItem item) {
  return entry(item).icon.has_value();
}

std::optional<QPixmap> FullSource::sourceListIconForItem(PXSourceList&, OutlineItem item) {
  return entry(item).icon;
}

std::optional<bool> FullSource::sourceListItemHasRightSideIcon(PXSourceList&, OutlineItem item) {
  return entry(item).processing || entry(item).rightSideIcon;
}

std::optional<bool> FullSource::sourceListItemIsProcessing(PXSourceList&, OutlineItem item) {
  return entry(item).processing;
}

std::optional<QPixmap> FullSource::sourceListRightSideIconForItem(PXSourceList&, OutlineItem item) {
  return entry(item).rightSideIcon;
}

std::optional<QPixmap> FullSource::sourceListRightSideHoveringIconForItem(PXSourceList&,
                                                                          OutlineItem item) {
  return entry(item).hoveringIcon;
}

}  // namespace snaplift::test
