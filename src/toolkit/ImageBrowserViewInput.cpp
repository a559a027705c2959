#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "toolkit/ImageBrowserView.h"
#include "toolkit/PromisedFilesDrag.h"

namespace snaplift {
namespace {

bool has(Qt::KeyboardModifiers modifiers, Qt::KeyboardModifier one) {
  return modifiers.testFlag(one);
}

}  // namespace

// Selection

template <typename Change>
void ImageBrowserView::changeSelection(Change&& change) {
  const IndexSet before = selectionIndexes();
  const int focusBefore = focusedIndex();
  change();
  selectionDidChange(before, focusBefore);
}

void ImageBrowserView::selectionDidChange(const IndexSet& before, int focusBefore) {
  if (focusedIndex() != focusBefore) {
    const QModelIndex current = model()->index(std::max(focusedIndex(), 0), 0);
    selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    viewport()->update();
  }
  if (!(selectionIndexes() == before)) {
    viewport()->update();
    if (QAccessible::isActive()) {
      QAccessibleEvent event(this, QAccessible::SelectionWithin);
      QAccessible::updateAccessibility(&event);
    }
    emit selectionIndexesChanged();
  }
}

void ImageBrowserView::setSelectionIndexes(const IndexSet& indexes) {
  changeSelection([&] { m_selection.setSelected(indexes); });
}

void ImageBrowserView::selectAll() {
  changeSelection([this] { m_selection.selectAll(); });
}

void ImageBrowserView::deselectAll() {
  changeSelection([this] { m_selection.clear(); });
}

void ImageBrowserView::invertSelection() {
  changeSelection([this] { m_selection.invert(); });
}

void ImageBrowserView::stepTo(int index) {
  if (index < 0 || index >= itemCount()) {
    return;
  }
  changeSelection([&] { m_selection.selectOnly(index); });
  scrollTo(model()->index(index, 0));
}

// QAbstractItemView's questions

QRect ImageBrowserView::visualRect(const QModelIndex& index) const {
  return index.isValid() && index.row() < itemCount() ? itemFrameAtIndex(index.row()) : QRect();
}

void ImageBrowserView::scrollTo(const QModelIndex& index, ScrollHint hint) {
  if (!index.isValid() || index.row() >= itemCount()) {
    return;
  }
  constexpr int margin = 14;
  const QRect cell = m_layout.cellRect(index.row()).adjusted(0, -margin, 0, margin);
  const int height = viewport()->height();
  const int top = verticalOffset();
  int target = top;
  if (hint == PositionAtTop || (hint == EnsureVisible && cell.top() < top)) {
    target = cell.top();
  } else if (hint == PositionAtBottom || (hint == EnsureVisible && cell.bottom() >= top + height)) {
    target = std::min(cell.bottom() + 1 - height, cell.top());
  } else if (hint == PositionAtCenter) {
    target = cell.center().y() - height / 2;
  }
  verticalScrollBar()->setValue(target);
}

QModelIndex ImageBrowserView::indexAt(const QPoint& point) const {
  const std::optional<int> index = indexOfItemAtPoint(point);
  return index ? model()->index(*index, 0) : QModelIndex();
}

void ImageBrowserView::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags flags) {
  changeSelection([&] {
    m_selection.beginBand(!flags.testFlag(QItemSelectionModel::Clear));
    m_selection.setBand(m_layout, rect.translated(0, verticalOffset()));
  });
}

QRegion ImageBrowserView::visualRegionForSelection(const QItemSelection& selection) const {
  return selection.isEmpty() ? QRegion() : QRegion(viewport()->rect());
}

QModelIndex ImageBrowserView::moveCursor(CursorAction action, Qt::KeyboardModifiers) {
  static const std::pair<CursorAction, int> keys[] = {
      {MoveUp, Qt::Key_Up},         {MoveDown, Qt::Key_Down},         {MoveLeft, Qt::Key_Left},
      {MoveRight, Qt::Key_Right},   {MoveHome, Qt::Key_Home},         {MoveEnd, Qt::Key_End},
      {MovePageUp, Qt::Key_PageUp}, {MovePageDown, Qt::Key_PageDown}, {MoveNext, Qt::Key_Right},
      {MovePrevious, Qt::Key_Left}};
  const auto* key = std::find_if(std::begin(keys), std::end(keys),
                                 [&](const auto& pair) { return pair.first == action; });
  return key == std::end(keys) ? QModelIndex() : model()->index(moveTarget(key->second), 0);
}

void ImageBrowserView::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update();
}

void ImageBrowserView::focusOutEvent(QFocusEvent* event) {
  QAbstractItemView::focusOutEvent(event);
  viewport()->update();
}

// Mouse

void ImageBrowserView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) {
    const std::optional<int> index = indexOfItemAtPoint(event->position().toPoint());
    if (index && !selectionIndexes().contains(*index)) {
      stepTo(*index);
    }
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
  const bool control = has(event->modifiers(), Qt::ControlModifier);
  const bool shift = has(event->modifiers(), Qt::ShiftModifier);
  const std::optional<int> index = indexOfItemAtPoint(point);
  m_onRelease = OnRelease::Nothing;
  if (!index) {
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

void ImageBrowserView::mouseUp(QMouseEvent*) {
  endBand();
  if (!m_isDragging && m_onRelease != OnRelease::Nothing && m_pressedIndex < itemCount()) {
    changeSelection([this] {
      m_onRelease == OnRelease::Toggle ? m_selection.toggle(m_pressedIndex)
                                       : m_selection.selectOnly(m_pressedIndex);
    });
  }
  m_onRelease = OnRelease::Nothing;
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
  const QPoint pointer = m_band->to - QPoint(0, verticalOffset());
  const int below = pointer.y() - viewport()->height();
  const int distance = pointer.y() < 0 ? pointer.y() : std::max(below, 0);
  verticalScrollBar()->setValue(verticalOffset() + distance);
  moveBand(pointer);
}

// Keyboard

void ImageBrowserView::keyPressEvent(QKeyEvent* event) {
  if (handleZoomKey(*event) || handleMoveKey(*event) || handleCommandKey(*event)) {
    m_typeSelect.end();
    event->accept();
    return;
  }
  const bool isText = !event->text().isEmpty() && event->text().front().isPrint() &&
                      !has(event->modifiers(), Qt::ControlModifier) &&
                      !has(event->modifiers(), Qt::AltModifier);
  if (isText) {
    handleTyping(*event);
    event->accept();
  } else {
    event->ignore();
  }
}

bool ImageBrowserView::handleZoomKey(const QKeyEvent& event) {
  if (!has(event.modifiers(), Qt::ControlModifier)) {
    return false;
  }
  switch (event.key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:  // the plus key without Shift
      zoomIn();
      return true;
    case Qt::Key_Minus:
      zoomOut();
      return true;
    case Qt::Key_0:
      zoomToInitialSize();
      return true;
    default:
      return false;
  }
}

// Where a key leads to from the focus; -1 if it is no such key.
int ImageBrowserView::moveTarget(int key) const {
  const int last = itemCount() - 1;
  const int focus = focusedIndex();
  const int columns = m_layout.columns();
  const int pageRows = std::max(viewport()->height() / m_layout.rowHeight(), 1);
  const auto byRows = [&](int rows) {
    // Past the end: the last photo from the row above it, else the photo stays.
    const int target = focus + rows * columns;
    if (target > last) {
      const bool isLastRow = focus / columns == last / columns;
      return isLastRow ? focus : std::min(last - last % columns + focus % columns, last);
    }
    return target < 0 ? focus % columns : target;
  };
  const bool isMove = key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up ||
                      key == Qt::Key_Down || key == Qt::Key_Home || key == Qt::Key_End ||
                      key == Qt::Key_PageUp || key == Qt::Key_PageDown;
  if (!isMove || last < 0) {
    return -1;
  }
  if (focus < 0) {
    return key == Qt::Key_End ? last : 0;
  }
  switch (key) {
    case Qt::Key_Left:
      return std::max(focus - 1, 0);
    case Qt::Key_Right:
      return std::min(focus + 1, last);
    case Qt::Key_Up:
      return byRows(-1);
    case Qt::Key_Down:
      return byRows(1);
    case Qt::Key_PageUp:
      return byRows(-pageRows);
    case Qt::Key_PageDown:
      return byRows(pageRows);
    case Qt::Key_Home:
      return 0;
    default:
      return last;
  }
}

bool ImageBrowserView::handleMoveKey(const QKeyEvent& event) {
  if (has(event.modifiers(), Qt::AltModifier)) {
    return false;
  }
  const int target = moveTarget(event.key());
  if (target < 0) {
    return false;
  }
  const bool control = has(event.modifiers(), Qt::ControlModifier);
  if (has(event.modifiers(), Qt::ShiftModifier)) {
    changeSelection([&] { m_selection.extendTo(target, control); });
  } else if (control) {
    changeSelection([&] { m_selection.moveFocus(target); });
  } else {
    changeSelection([&] { m_selection.selectOnly(target); });
  }
  scrollTo(model()->index(target, 0));
  return true;
}

bool ImageBrowserView::handleCommandKey(const QKeyEvent& event) {
  const bool control = has(event.modifiers(), Qt::ControlModifier);
  if (event.key() == Qt::Key_Space && control) {
    if (focusedIndex() >= 0) {
      changeSelection([this] { m_selection.toggle(focusedIndex()); });
    }
    return true;
  }
  if (event.key() == Qt::Key_Space && event.modifiers() == Qt::NoModifier) {
    setPreviewOpen(true);
    return true;
  }
  if (event.key() == Qt::Key_Escape) {
    if (m_band) {
      changeSelection([this] { m_selection.cancelBand(); });
      endBand();
    } else {
      deselectAll();
    }
    return true;
  }
  if (event.matches(QKeySequence::SelectAll)) {
    selectAll();
    return true;
  }
  return false;
}

void ImageBrowserView::handleTyping(const QKeyEvent& event) {
  const int found = indexOfTyped(m_typeSelect.add(event.text()), itemCount(), focusedIndex(),
                                 [this](int index) { return titleAtIndex(index); });
  stepTo(found);
}

}  // namespace snaplift
