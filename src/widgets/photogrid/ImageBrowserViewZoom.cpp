#include <QCursor>
#include <QNativeGestureEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "widgets/photogrid/ImageBrowserView.h"
#include "widgets/photogrid/PhotoPreview.h"

namespace snaplift {

// Photos change columns as the grid is laid out anew. So a series of steps about one point holds
// the photo that it began with, not the one that each step puts there.
void ImageBrowserView::holdPhotoAt(QPoint point) {
  constexpr int tremor = 4;
  if (m_anchor && (m_anchor->at - point).manhattanLength() <= tremor) {
    return;
  }
  const int index = std::max(m_layout.nearestIndex(contentPoint(point)), 0);
  const int into = contentPoint(point).y() - m_layout.cellRect(index).top();
  m_anchor = Anchor{index, double{1} * into / m_layout.rowHeight(), point};
}

ImageBrowserView::Anchor ImageBrowserView::anchorOfFirstVisible() const {
  const IndexRange visible = visibleRange();
  if (visible.empty()) {
    return {0, 0, m_layout.cellRect(0).topLeft()};
  }
  // A row of which most is out of sight, or under the header, does not count.
  const int hidden = m_layout.headerHeight() - viewportRect(m_layout.cellRect(visible.first)).top();
  const int second = m_layout.itemsOfRow(m_layout.rowOf(visible.first)).last + 1;
  const int index =
      hidden > m_layout.rowHeight() / 2 && second <= visible.last ? second : visible.first;
  return {index, 0, viewportRect(m_layout.cellRect(index)).topLeft()};
}

void ImageBrowserView::setZoomValue(float zoom) {
  if (!std::isfinite(zoom) || zoom == m_zoomValue) {
    return;
  }
  m_zoomValue = zoom;
  relayout();
  emit zoomValueChanged(zoom);
}

void ImageBrowserView::setZoomValueAboutPoint(float zoom, QPoint point) {
  holdPhotoAt(point);
  setZoomValue(zoom);
}

double ImageBrowserView::largestZoom() const {
  return m_delegate ? m_delegate->maxZoom() : 1.0;
}

void ImageBrowserView::zoomBy(double factor, QPoint point) {
  const double zoom = std::clamp(double{m_zoomValue} * factor, double{smallestZoom},
                                 std::max(largestZoom(), double{smallestZoom}));
  setZoomValueAboutPoint(static_cast<float>(zoom), point);
}

// The pointer, or else the focused photo, or else the middle.
QPoint ImageBrowserView::zoomPoint() const {
  const QPoint pointer = viewport()->mapFromGlobal(QCursor::pos());
  if (viewport()->rect().contains(pointer) && viewport()->underMouse()) {
    return pointer;
  }
  if (m_selection.focus() >= 0) {
    const QPoint focus = itemFrameAtIndex(m_selection.focus()).center();
    if (viewport()->rect().contains(focus)) {
      return focus;
    }
  }
  return viewport()->rect().center();
}

void ImageBrowserView::zoomIn() {
  m_preview ? m_preview->zoomBy(PhotoPreview::zoomStep)
            : zoomBy(PhotoPreview::zoomStep, zoomPoint());
}
void ImageBrowserView::zoomOut() {
  m_preview ? m_preview->zoomBy(1 / PhotoPreview::zoomStep)
            : zoomBy(1 / PhotoPreview::zoomStep, zoomPoint());
}
void ImageBrowserView::zoomToInitialSize() {
  m_preview ? m_preview->setZoom(1, {}) : setZoomValueAboutPoint(initialZoom, zoomPoint());
}

void ImageBrowserView::wheelEvent(QWheelEvent* event) {
  if (!event->modifiers().testFlag(Qt::ControlModifier)) {
    QAbstractScrollArea::wheelEvent(event);
    return;
  }
  const int angle = event->angleDelta().y();
  if (angle != 0) {
    zoomBy(PhotoPreview::zoomOfWheel(angle), event->position().toPoint());
  }
  event->accept();
}

void ImageBrowserView::magnifyWithEvent(QNativeGestureEvent* event) {
  zoomBy(1 + event->value(), event->position().toPoint());
}

}  // namespace snaplift
