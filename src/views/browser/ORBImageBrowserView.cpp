#include "views/browser/ORBImageBrowserView.h"

#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPointer>

namespace snaplift {

void ORBImageBrowserView::setDelegate(ORBImageBrowserViewDelegate* delegate) {
  m_exporter = delegate;
  ImageBrowserView::setDelegate(delegate);
}

void ORBImageBrowserView::mouseDown(QMouseEvent* event) {
  m_dragSelectInProgress = !indexOfItemAtPoint(event->position().toPoint()).has_value();
  m_hasDraggedOut = false;
  ImageBrowserView::mouseDown(event);
}

void ORBImageBrowserView::mouseUp(QMouseEvent* event) {
  m_dragSelectInProgress = false;
  ImageBrowserView::mouseUp(event);
}

void ORBImageBrowserView::mouseDragged(QMouseEvent* event) {
  if (m_dragSelectInProgress) {
    ImageBrowserView::mouseDragged(event);
    return;
  }
  // A drag that was given up with Escape leaves the button down: that gesture is over.
  if (m_hasDraggedOut || selectionIndexes().empty()) {
    return;
  }
  m_hasDraggedOut = true;
  m_itemsInCurrentPromiseDragOperation.clear();
  for (const int index : selectionIndexes().indexes()) {
    m_itemsInCurrentPromiseDragOperation.push_back(itemAtIndex(index));
  }
  constexpr QPoint pointerInPicture(16, 16);
  constexpr QSize pictureSize(64, 64);
  const QRect rect(event->position().toPoint() - pointerInPicture, pictureSize);

  const QPointer<ORBImageBrowserView> self(this);
  setThumbnailsSuspended(true);
  dragPromisedFilesOfTypesFromRectSourceSlideBackEvent({"jpg"}, rect, *this, true, event);
  if (self) {
    setThumbnailsSuspended(false);
  }
}

std::vector<std::string> ORBImageBrowserView::namesOfPromisedFilesDroppedAtDestination(
    const std::string& folder) {
  if (m_exporter == nullptr) {
    return {};
  }
  return m_exporter
      ->imageBrowserExportItemsToDestination(*this, m_itemsInCurrentPromiseDragOperation, folder)
      .value_or(std::vector<std::string>());
}

std::string ORBImageBrowserView::firstPromisedName() const {
  const auto& items = m_itemsInCurrentPromiseDragOperation;
  return items.empty() ? std::string() : items.front()->imageTitle();
}

std::shared_ptr<PromisedFileList> ORBImageBrowserView::promisedFiles() {
  return m_exporter == nullptr
             ? nullptr
             : m_exporter->imageBrowserFilesOfItems(*this, m_itemsInCurrentPromiseDragOperation);
}

void ORBImageBrowserView::magnifyWithEvent(QNativeGestureEvent* event) {
  const double magnification = event->value();
  const double zoom = zoomValue();
  const double largest = delegate() != nullptr ? delegate()->maxZoom() : 1.0;
  if (magnification > 0 && largest > zoom) {
    setZoomValue(static_cast<float>(zoom + magnification));
  } else if (magnification < 0) {
    const double smaller = zoom + magnification;
    setZoomValue(smaller > 0.1 ? static_cast<float>(smaller) : smallestZoom);
  }
}

}  // namespace snaplift
