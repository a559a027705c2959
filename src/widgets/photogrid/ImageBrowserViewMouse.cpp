#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <algorithm>

#include "widgets/photogrid/ImageBrowserView.h"
#include "widgets/promises/PromisedFilesDrag.h"

namespace snaplift {

void ImageBrowserView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) {
    selectForMenu(event->position().toPoint());
  }
  if (event->button() != Qt::LeftButton) {
    return;
  }
  m_pressedAt = event->position().toPoint();
  m_isDragging = false;
  mouseDown(event);
}

void ImageBrowserView::mouseMoveEvent(QMouseEvent* event) {
  if (!m_pressedAt || !event->buttons().testFlag(Qt::LeftButton)) {
    return;
  }
  const QPoint moved = event->position().toPoint() - *m_pressedAt;
  m_isDragging = m_isDragging || moved.manhattanLength() >= QApplication::startDragDistance();
  if (m_isDragging) {
    mouseDragged(event);
  }
}

void ImageBrowserView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && m_pressedAt) {
    mouseUp(event);
    m_pressedAt.reset();
  }
}

void ImageBrowserView::mouseDoubleClickEvent(QMouseEvent* event) {
  const QPoint point = event->position().toPoint();
  const std::optional<int> index = indexOfItemAtPoint(point);
  if (event->button() != Qt::LeftButton || !index) {
    mousePressEvent(event);
    return;
  }
  // Whoever zooms now, zooms into this photo.
  holdPhotoAt(point);
  if (m_delegate != nullptr) {
    m_delegate->imageBrowserCellWasDoubleClickedAtIndex(*this, *index);
  }
}

// A press on a selected photo may begin a drag of the whole selection, so it changes nothing before
// the button is released without one.
void ImageBrowserView::mouseDown(QMouseEvent* event) {
  const QPoint point = event->position().toPoint();
  const bool control = event->modifiers().testFlag(Qt::ControlModifier);
  const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
  const std::optional<int> index = indexOfItemAtPoint(point);
  m_onRelease = OnRelease::Nothing;
  if (!index) {
    const std::optional<int> group = groupWithHeaderAtPoint(point);
    m_onRelease = group ? OnRelease::SelectGroup : OnRelease::Nothing;
    m_pressedIndex = group.value_or(-1);
    beginBand(point, control || shift);
    return;
  }
  m_pressedIndex = *index;
  if (shift) {
    changeSelection([&] { m_selection.extendTo(*index, control); });
  } else if (selectionIndexes().contains(*index)) {
    m_onRelease = control ? OnRelease::Toggle : OnRelease::SelectOnly;
    changeSelection([&] { m_selection.moveFocus(*index); });
  } else {
    changeSelection([&] { control ? m_selection.toggle(*index) : m_selection.selectOnly(*index); });
  }
}

void ImageBrowserView::mouseDragged(QMouseEvent* event) {
  if (m_band) {
    moveBand(event->position().toPoint());
  }
}

void ImageBrowserView::mouseUp(QMouseEvent* event) {
  endBand();
  const OnRelease action = m_isDragging ? OnRelease::Nothing : m_onRelease;
  m_onRelease = OnRelease::Nothing;
  if (action == OnRelease::SelectGroup) {
    selectGroup(m_pressedIndex, event->modifiers());
  } else if (action == OnRelease::Toggle) {
    changeSelection([this] { m_selection.toggle(m_pressedIndex); });
  } else if (action == OnRelease::SelectOnly) {
    changeSelection([this] { m_selection.selectOnly(m_pressedIndex); });
  }
}

// Menus

// What the menu is to be about: what is selected where the press is on a part of it.
void ImageBrowserView::selectForMenu(QPoint viewportPoint) {
  const std::optional<int> group = groupWithHeaderAtPoint(viewportPoint);
  const std::optional<int> index = indexOfItemAtPoint(viewportPoint);
  if (group) {
    IndexSet withGroup = selectionIndexes();
    withGroup.insertRange(itemsOfGroup(*group).first, itemsOfGroup(*group).last);
    if (withGroup.count() > selectionIndexes().count()) {
      selectGroup(*group);
    }
  } else if (!index) {
    deselectAll();
  } else if (!selectionIndexes().contains(*index)) {
    stepTo(*index);
  }
}

void ImageBrowserView::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() != QContextMenuEvent::Mouse) {
    askForMenuByKey();
  } else if (m_delegate != nullptr && !selectionIndexes().empty()) {
    m_delegate->imageBrowserContextMenuAtPoint(*this, event->globalPos());
  }
}

void ImageBrowserView::askForMenuByKey() {
  if (itemCount() == 0 || m_delegate == nullptr) {
    return;
  }
  if (selectionIndexes().empty()) {
    stepTo(focusedIndex());
  }
  const int index =
      selectionIndexes().contains(focusedIndex()) ? focusedIndex() : selectionIndexes().first();
  scrollToIndex(index);
  const QRect frame = isPreviewOpen() ? rect() : itemFrameAtIndex(index) & viewport()->rect();
  m_delegate->imageBrowserContextMenuAtPoint(*this, viewport()->mapToGlobal(frame.center()));
}

// What the target takes is its own affair: the types say what a photo is, not which targets may
// have it.
void ImageBrowserView::dragPromisedFilesOfTypesFromRectSourceSlideBackEvent(
    const QStringList&, const QRect& rect, PromisedFilesSource& source, bool slideBack,
    QMouseEvent* event) {
  const Thumbnail* first = thumbnailAtIndex(selectionIndexes().first());
  DragAppearance appearance;
  appearance.picture =
      dragPicture(first != nullptr ? first->picture : QImage(), selectionIndexes().count(),
                  std::max(rect.width(), rect.height()), devicePixelRatio(), palette());
  appearance.hotSpot = event->position().toPoint() - rect.topLeft();
  appearance.origin = viewport()->mapToGlobal(rect.topLeft());
  appearance.slidesBack = slideBack;
  dragPromisedFiles(source, *this, appearance);
}

// Rubber band

void ImageBrowserView::beginBand(QPoint viewportPoint, bool keep) {
  changeSelection([&] { m_selection.beginBand(keep); });
  m_band = Band{contentPoint(viewportPoint), contentPoint(viewportPoint)};
}

void ImageBrowserView::moveBand(QPoint viewportPoint) {
  m_band->to = contentPoint(viewportPoint);
  changeSelection([this] { m_selection.setBand(m_layout, m_band->rect()); });
  viewport()->update();
  const bool isInside = viewport()->rect().contains(viewportPoint);
  if (isInside) {
    m_bandTimer.stop();
  } else if (!m_bandTimer.isActive()) {
    m_bandTimer.start();
  }
}

void ImageBrowserView::endBand() {
  m_bandTimer.stop();
  if (m_band) {
    m_band.reset();
    viewport()->update();
  }
}

// The farther the pointer is outside, the faster.
void ImageBrowserView::scrollWithBand() {
  const QPoint pointer = m_band->to - QPoint(0, scrolled());
  const int below = pointer.y() - viewport()->height();
  const int distance = pointer.y() < 0 ? pointer.y() : std::max(below, 0);
  verticalScrollBar()->setValue(scrolled() + distance);
  moveBand(pointer);
}

}  // namespace snaplift
