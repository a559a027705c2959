// What keys and pointer do to the open preview.

#include <QCloseEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <algorithm>
#include <cmath>

#include "widgets/photogrid/ImageBrowserView.h"
#include "widgets/photogrid/PhotoPreview.h"

namespace snaplift {
namespace {

constexpr double largestZoom = 2;  // device pixels for each pixel of the photo

}  // namespace

double PhotoPreview::zoomOfWheel(int angle) {
  constexpr double notch = 120;
  return std::pow(zoomStep, angle / notch);
}

void PhotoPreview::setZoom(double zoom, QPointF about) {
  if (m_photo.picture.isNull()) {
    return;
  }
  const double most =
      largestZoom * m_photo.photoSize.width() / (fittedSize().width() * devicePixelRatio());
  const double next = std::clamp(zoom, 1.0, std::max(most, 1.0));
  const QPointF fromMiddle = about - QRectF(photoArea()).center();
  const QPointF centre = fromMiddle - (fromMiddle - m_centre) * (next / m_zoom);
  m_zoom = next;
  moveTo(centre);
  setCursor(m_zoom > 1 ? Qt::OpenHandCursor : Qt::ArrowCursor);
  request();
}

void PhotoPreview::zoomBy(double factor) {
  setZoom(m_zoom * factor, photoArea().center());
}

// A photo larger than its area covers it; no side of it can be pulled in.
void PhotoPreview::moveTo(QPointF centre) {
  const QSizeF over =
      (photoRect().size() - QSizeF(photoArea().size())).expandedTo(QSizeF(0, 0)) / 2;
  m_centre = {std::clamp(centre.x(), -over.width(), over.width()),
              std::clamp(centre.y(), -over.height(), over.height())};
  update();
}

// The view's own keys move its focus, up and down by rows; modifiers mean nothing here.
void PhotoPreview::go(int key) {
  QKeyEvent plain(QEvent::KeyPress, key, Qt::NoModifier);
  QCoreApplication::sendEvent(m_view, &plain);
  showPhoto(m_view->focusedIndex());
}

// Of the window that fills the screen, by the desktop's own means.
void PhotoPreview::closeEvent(QCloseEvent* event) {
  event->ignore();
  m_view->setPreviewOpen(false);
}

void PhotoPreview::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      m_view->setPreviewOpen(false);
      return;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      zoomBy(zoomStep);
      return;
    case Qt::Key_Minus:
      zoomBy(1 / zoomStep);
      return;
    case Qt::Key_0:
      setZoom(1, photoArea().center());
      return;
    case Qt::Key_F11:
      toggleFullScreen();
      return;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      go(event->key());
      return;
    default:
      event->ignore();
  }
}

// Clicks are for the photo, not for the grid behind it.
void PhotoPreview::mousePressEvent(QMouseEvent* event) {
  m_dragged = event->position();
}

void PhotoPreview::mouseMoveEvent(QMouseEvent* event) {
  moveTo(m_centre + event->position() - m_dragged);
  m_dragged = event->position();
}

void PhotoPreview::wheelEvent(QWheelEvent* event) {
  setZoom(m_zoom * zoomOfWheel(event->angleDelta().y()), event->position());
  event->accept();
}

void PhotoPreview::mouseDoubleClickEvent(QMouseEvent*) {
  m_view->setPreviewOpen(false);
}

}  // namespace snaplift
