#include <QKeyEvent>
#include <algorithm>

#include "widgets/photogrid/ImageBrowserView.h"

namespace snaplift {
namespace {

bool has(Qt::KeyboardModifiers modifiers, Qt::KeyboardModifier one) {
  return modifiers.testFlag(one);
}

}  // namespace

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
int ImageBrowserView::moveTarget(int key) {
  const int last = itemCount() - 1;
  const int focus = focusedIndex();
  const bool isMove = key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up ||
                      key == Qt::Key_Down || key == Qt::Key_Home || key == Qt::Key_End ||
                      key == Qt::Key_PageUp || key == Qt::Key_PageDown;
  if (!isMove || last < 0) {
    return -1;
  }
  if (m_selection.focus() < 0) {
    return key == Qt::Key_End ? last : key == Qt::Key_Home ? 0 : focus;
  }
  switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
      return std::clamp(focus + ((key == Qt::Key_Right) == isRightToLeft() ? -1 : 1), 0, last);
    case Qt::Key_Home:
      return 0;
    case Qt::Key_End:
      return last;
    default:
      return moveTargetInColumn(key);
  }
}

// Up or down, by a row or by as much as is seen. A row without a photo in the column has its last.
int ImageBrowserView::moveTargetInColumn(int key) {
  const int focus = m_selection.focus();
  if (m_keyColumn.focus != focus) {
    m_keyColumn.column = m_layout.columnOf(focus);
  }
  const int row = m_layout.rowOf(focus);
  const int top = m_layout.cellRect(focus).top();
  const int page = viewport()->height() - m_layout.headerHeight();
  const int wanted = key == Qt::Key_Up     ? row - 1
                     : key == Qt::Key_Down ? row + 1
                     : key == Qt::Key_PageDown
                         ? std::max(m_layout.lastRowFrom(top + page), row + 1)
                         : std::min(m_layout.lastRowFrom(top - page - 1) + 1, row - 1);
  const IndexRange items = m_layout.itemsOfRow(std::clamp(wanted, 0, m_layout.rows() - 1));
  m_keyColumn.focus = std::min(items.first + m_keyColumn.column, items.last);
  return m_keyColumn.focus;
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
  scrollToIndex(target);
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
  const bool opens =
      event.key() == Qt::Key_Space || event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
  if (opens && !(event.modifiers() & ~Qt::KeypadModifier)) {
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
  if (event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier) {
    askForMenuByKey();
    return true;
  }
  if (event.matches(QKeySequence::SelectAll)) {
    selectAll();
    return true;
  }
  return false;
}

void ImageBrowserView::handleTyping(const QKeyEvent& event) {
  if (!m_typeSelect.isTyping() && m_delegate != nullptr &&
      m_delegate->imageBrowserTakesTyping(*this, event.text())) {
    return;
  }
  const int found = indexOfTyped(m_typeSelect.add(event.text()), itemCount(), focusedIndex(),
                                 [this](int index) { return titleAtIndex(index); });
  stepTo(found);
}

}  // namespace snaplift
