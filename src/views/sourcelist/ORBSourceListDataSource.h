#pragma once

#include "views/sourcelist/PXSourceListDataSource.h"
#include "views/sourcelist/PXSourceListDelegate.h"

namespace snaplift {

// What an ORBSourceList asks of its data source besides: the right end of ordinary rows. Optional,
// with std::nullopt for "not implemented", as in PXSourceListDataSource.
class ORBSourceListDataSource : public PXSourceListDataSource {
public:
  // Whether the row has a right-side area, for the spinner or the icon. Otherwise no row has
  // either, whatever the operations below say.
  virtual std::optional<bool> sourceListItemHasRightSideIcon(PXSourceList&, OutlineItem) {
    return {};
  }
  // Whether the row shows the spinner instead of the icon. Another thread may change the answer;
  // it is asked for while the row is drawn. Otherwise never.
  virtual std::optional<bool> sourceListItemIsProcessing(PXSourceList&, OutlineItem) { return {}; }
  // Otherwise no icon. Whoever has one implements the second for when the mouse is over it too.
  virtual std::optional<QPixmap> sourceListRightSideIconForItem(PXSourceList&, OutlineItem) {
    return {};
  }
  virtual std::optional<QPixmap> sourceListRightSideHoveringIconForItem(PXSourceList&,
                                                                        OutlineItem) {
    return {};
  }
};

// What an ORBSourceList tells its delegate besides.
class ORBSourceListDelegate : public PXSourceListDelegate {
public:
  // The row's number is under "row" (std::uint64_t).
  virtual void sourceListRightSideIconWasClicked(const Notification&) {}
};

}  // namespace snaplift
