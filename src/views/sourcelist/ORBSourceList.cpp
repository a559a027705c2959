#include "views/sourcelist/ORBSourceList.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTextDocument>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cmath>

#include "views/sourcelist/SourceListGeometry.h"
#include "widgets/desktop/ActivityIndicator.h"
#include "widgets/desktop/SelectionColors.h"

namespace snaplift {
namespace {

constexpr std::chrono::milliseconds tick{50};
constexpr double secondsPerTick = 0.05;
constexpr double firstSpinState = 1.0;

constexpr double visibleContrast = 2;

}  // namespace

ORBSourceList::ORBSourceList(QWidget* parent) : PXSourceList(parent) {
  setUp();
}

ORBSourceList::ORBSourceList(const QRect& frame, QWidget* parent) : PXSourceList(frame, parent) {
  setUp();
}

void ORBSourceList::setUp() {
  m_timer.setInterval(tick);
  m_timer.setTimerType(Qt::PreciseTimer);
  connect(&m_timer, &QTimer::timeout, this, &ORBSourceList::animateWithTimer);
}

void ORBSourceList::setDataSource(PXSourceListDataSource* dataSource) {
  m_ORBDataSource = dynamic_cast<ORBSourceListDataSource*>(dataSource);
  PXSourceList::setDataSource(dataSource);
}

void ORBSourceList::setDelegate(PXSourceListDelegate* delegate) {
  PXSourceList::setDelegate(delegate);
  registerDelegateToReceiveNotificationWithSelector(
      ORBSourceListRightSideIconWasClicked,
      &ORBSourceListDelegate::sourceListRightSideIconWasClicked);
}

void ORBSourceList::reloadData() {
  // Row numbers and items may mean something else now; what is still true is drawn again.
  m_trackingAreas.clear();
  m_hoveredRow = -1;
  m_animatingRows.clear();
  stopAnimating();
  PXSourceList::reloadData();
}

bool ORBSourceList::isProcessing(OutlineItem item) {
  return m_ORBDataSource &&
         m_ORBDataSource->sourceListItemIsProcessing(*this, item).value_or(false);
}

bool ORBSourceList::hasRightSideIcon(OutlineItem item) {
  return m_ORBDataSource &&
         m_ORBDataSource->sourceListItemHasRightSideIcon(*this, item).value_or(false);
}

QSizeF ORBSourceList::sizeOfBadgeAtRow(int row) {
  const OutlineItem item = itemAtRow(row);
  if (!isGroupItem(item) && (hasRightSideIcon(item) || isProcessing(item))) {
    return QSizeF(sourceListGeometry::rightSideIconSide, sourceListGeometry::rightSideIconSide);
  }
  return PXSourceList::sizeOfBadgeAtRow(row);
}

ORBSourceList::RowDescription ORBSourceList::descriptionOfRow(int row) {
  RowDescription description = PXSourceList::descriptionOfRow(row);
  const OutlineItem item = itemAtRow(row);
  description.busy = !isGroupItem(item) && isProcessing(item);
  if (description.busy) {
    description.text += (description.text.isEmpty() ? "" : ", ") + tr("Loading...");
  }
  return description;
}

void ORBSourceList::drawRowClipRect(QPainter& painter, int row, const QRectF& clip) {
  PXSourceList::drawRowClipRect(painter, row, clip);
  const OutlineItem item = itemAtRow(row);
  const auto rightSide = m_ORBDataSource && !isGroupItem(item)
                             ? m_ORBDataSource->sourceListItemHasRightSideIcon(*this, item)
                             : std::nullopt;
  if (!rightSide) {
    return;
  }
  if (isProcessing(item)) {
    beginAnimating(item);
    drawSpinnerForRow(painter, row);
    return;
  }
  endAnimating(item);
  if (*rightSide) {
    drawRightSideIcon(painter, row);
  } else if (m_trackingAreas.erase(row) != 0) {
    m_hoveredRow = -1;
  }
}

void ORBSourceList::drawRightSideIcon(QPainter& painter, int row) {
  const OutlineItem item = itemAtRow(row);
  const QPixmap icon =
      (m_hoveredRow == row ? m_ORBDataSource->sourceListRightSideHoveringIconForItem(*this, item)
                           : m_ORBDataSource->sourceListRightSideIconForItem(*this, item))
          .value_or(QPixmap());
  if (!icon.isNull()) {
    const QRectF frame = mirrored(sourceListGeometry::rightSideIconFrame(rectOfRow(row)));
    sourceListDrawing::drawPicture(painter, frame, icon);
    m_trackingAreas[row] = frame.translated(horizontalOffset(), verticalOffset());
  }
}

void ORBSourceList::drawSpinnerForRow(QPainter& painter, int row) {
  const int step = static_cast<int>(std::lround(m_spinState * ActivitySpokes::count));
  const bool white = row == selectedRow() && QApplication::activeWindow();
  const float level = white ? 1.0f : 0.2f;
  const QColor spokes = QColor::fromRgbF(level, level, level);
  const QRectF rowRect = rectOfRow(row);
  const QPointF centre =
      mirrored(QRectF(sourceListGeometry::spinnerCentre(rowRect), QSizeF(0, 0))).topLeft();
  if (contrast(spokes, backgroundColorOfRow(row)) < visibleContrast) {
    // They get what badges have there, a fill of their own: the row's, unless that is as light (or
    // as dark) as the spokes.
    const QColor own = colorsOfBadge(row).fill;
    const QColor fill =
        contrast(spokes, own) < visibleContrast ? sourceListDrawing::defaultBadgeFill : own;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    constexpr double radius = sourceListGeometry::rightSideIconSide / 2;
    painter.drawEllipse(centre, radius, radius);
    painter.restore();
  }
  ActivitySpokes().draw(painter, centre, step, spokes);
}

void ORBSourceList::beginAnimating(OutlineItem item) {
  if (std::find(m_animatingRows.begin(), m_animatingRows.end(), item) == m_animatingRows.end()) {
    m_animatingRows.push_back(item);
    emit descriptionChanged(item);
  }
  startAnimating();
}

void ORBSourceList::endAnimating(OutlineItem item) {
  if (std::erase(m_animatingRows, item) != 0) {
    emit descriptionChanged(item);
    if (m_animatingRows.empty()) {
      stopAnimating();
    }
  }
}

void ORBSourceList::startAnimating() {
  if (!m_timer.isActive()) {
    m_timer.start();
  }
}

void ORBSourceList::stopAnimating() {
  m_timer.stop();
  m_spinState = firstSpinState;
}

void ORBSourceList::animateWithTimer() {
  m_spinState += secondsPerTick;
  // A row that is scrolled away or closed in is not drawn, so it would never learn that its work
  // has ended. It is dropped, and comes back by being drawn.
  std::erase_if(m_animatingRows, [&](OutlineItem item) { return !canBeSeen(item); });
  if (m_animatingRows.empty()) {
    stopAnimating();
  }
  for (const OutlineItem item : m_animatingRows) {
    reloadItem(item);
  }
}

bool ORBSourceList::canBeSeen(OutlineItem item) {
  const QWindow* screenWindow = window()->windowHandle();
  return isVisible() && screenWindow && screenWindow->isExposed() &&
         rectOfRow(rowForItem(item)).intersects(viewport()->rect());
}

void ORBSourceList::hideEvent(QHideEvent* event) {
  PXSourceList::hideEvent(event);
  stopAnimating();
}

QMenu* ORBSourceList::menuForEvent(QMouseEvent* event) {
  QMenu* menu = PXSourceList::menuForEvent(event);
  const OutlineItem item = itemAtRow(rowAtPoint(event->position()));
  const bool asksForGroup =
      menu == nullptr && m_groupMenu && isGroupItem(item) && event->button() == Qt::RightButton;
  return asksForGroup ? m_groupMenu(item) : menu;
}

void ORBSourceList::mouseDown(QMouseEvent* event) {
  const int row = rowAtPoint(event->position());
  if (event->button() == Qt::LeftButton && row >= 0 && row == m_hoveredRow) {
    event->accept();
    postNotification(ORBSourceListRightSideIconWasClicked,
                     {{"row", static_cast<std::uint64_t>(row)}});
  } else {
    PXSourceList::mouseDown(event);
  }
}

void ORBSourceList::mouseEntered(const QPointF& position) {
  m_hoveredRow = rowAtPoint(position);
  reloadItem(itemAtRow(m_hoveredRow));
}

void ORBSourceList::mouseExited() {
  const int row = std::exchange(m_hoveredRow, -1);
  reloadItem(itemAtRow(row));
}

void ORBSourceList::trackMouse() {
  const int row = m_mousePosition ? rowAtPoint(*m_mousePosition) : -1;
  const auto area = m_trackingAreas.find(row);
  const bool inside =
      area != m_trackingAreas.end() &&
      area->second.contains(*m_mousePosition + QPointF(horizontalOffset(), verticalOffset()));
  if (m_hoveredRow >= 0 && !(inside && row == m_hoveredRow)) {
    mouseExited();
  }
  if (inside && row != m_hoveredRow) {
    mouseEntered(*m_mousePosition);
  }
}

void ORBSourceList::mouseMoveEvent(QMouseEvent* event) {
  m_mousePosition = event->position();
  trackMouse();
  PXSourceList::mouseMoveEvent(event);
}

bool ORBSourceList::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Leave) {
    m_mousePosition.reset();
    trackMouse();
  }
  return PXSourceList::viewportEvent(event);
}

void ORBSourceList::scrollContentsBy(int dx, int dy) {
  PXSourceList::scrollContentsBy(dx, dy);
  trackMouse();
}

}  // namespace snaplift
