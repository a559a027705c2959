#pragma once

#include <QTimer>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "views/sourcelist/ORBSourceListDataSource.h"
#include "views/sourcelist/PXSourceList.h"

namespace snaplift {

inline constexpr char ORBSourceListRightSideIconWasClicked[] =
    "ORBSourceListRightSideIconWasClicked";

// The window's sidebar: a PXSourceList whose ordinary rows may have, at their right end, a spinner
// while their item is being worked on, or an icon to click.
//
// A spinner starts when its row is drawn while the data source says so, and ends when the row is
// drawn after that; whoever ends the work has the row drawn once. One timer turns all spinners and
// redraws their rows only. It stops with the last of them, and while none of them can be seen.
class ORBSourceList : public PXSourceList {
  Q_OBJECT

public:
  explicit ORBSourceList(QWidget* parent = nullptr);
  explicit ORBSourceList(const QRect& frame, QWidget* parent = nullptr);

  // Its right-side operations are asked only of an ORBSourceListDataSource.
  void setDataSource(PXSourceListDataSource* dataSource) override;
  void setDelegate(PXSourceListDelegate* delegate) override;
  void reloadData() override;

  // The menu of a group for which the delegate has none; it is not owned. Asked at each time.
  using GroupMenu = std::function<QMenu*(OutlineItem group)>;
  void setGroupMenu(GroupMenu menu) { m_groupMenu = std::move(menu); }

  void startAnimating();
  void stopAnimating();
  bool isAnimating() const { return m_timer.isActive(); }
  // The rows that the timer redraws, as items in the order in which they began.
  const std::vector<OutlineItem>& animatingRows() const { return m_animatingRows; }
  // Seconds of animation, plus 1.
  double spinState() const { return m_spinState; }
  // The row whose right-side icon the mouse is over, or -1.
  int hoveredRow() const { return m_hoveredRow; }

  QSizeF sizeOfBadgeAtRow(int row) override;
  RowDescription descriptionOfRow(int row) override;

protected:
  void drawRowClipRect(QPainter& painter, int row, const QRectF& clip) override;
  void drawSpinnerForRow(QPainter& painter, int row);
  void animateWithTimer();
  void mouseDown(QMouseEvent* event) override;
  QMenu* menuForEvent(QMouseEvent* event) override;
  // The mouse has come over, or left, the icon of a row.
  virtual void mouseEntered(const QPointF& position);
  virtual void mouseExited();

  void mouseMoveEvent(QMouseEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  void hideEvent(QHideEvent* event) override;

private:
  ORBSourceListDataSource* m_ORBDataSource = nullptr;
  GroupMenu m_groupMenu;
  int m_hoveredRow = -1;
  // By row number, where that row's icon was last drawn; relative to the first row's corner, so
  // that scrolling leaves them right.
  std::map<int, QRectF> m_trackingAreas;
  double m_spinState = 1.0;
  std::vector<OutlineItem> m_animatingRows;
  QTimer m_timer{this};
  std::optional<QPointF> m_mousePosition;  // while the mouse is inside

  void setUp();
  bool isProcessing(OutlineItem item);
  bool hasRightSideIcon(OutlineItem item);
  void drawRightSideIcon(QPainter& painter, int row);
  void beginAnimating(OutlineItem item);
  void endAnimating(OutlineItem item);
  bool canBeSeen(OutlineItem item);
  void trackMouse();
};

}  // namespace snaplift
