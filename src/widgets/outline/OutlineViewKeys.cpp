#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <algorithm>

#include "widgets/outline/OutlineView.h"

// What the keyboard does. The focus, the row that keys act on, is most often the selected row; it
// leaves the selection behind to reach rows that cannot be selected: Left goes to a row's parent
// and on to the parents above, Control with Home and End to the first and last row of all, and
// while nothing is selected the arrows stop at every row.

namespace snaplift {

void OutlineView::keyPressEvent(QKeyEvent* event) {
  keyDown(event);
}

void OutlineView::keyDown(QKeyEvent* event) {
  if (state() == EditingState || !moveByKey(*event)) {
    QAbstractItemView::keyPressEvent(event);
  }
}

bool OutlineView::moveByKey(const QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers = event.modifiers();
  const bool leftToRight = layoutDirection() == Qt::LeftToRight;
  switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
      moveByRows(event.key() == Qt::Key_Down ? 1 : -1, modifiers);
      return true;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      moveByPage(event.key() == Qt::Key_PageDown ? 1 : -1, modifiers);
      return true;
    case Qt::Key_Home:
    case Qt::Key_End:
      moveToEnd(event.key() == Qt::Key_End ? 1 : -1, modifiers);
      return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
      if ((event.key() == Qt::Key_Left) == leftToRight) {
        moveTowardsParent();
      } else {
        moveTowardsChildren();
      }
      return true;
    case Qt::Key_Plus:
      expandItemExpandChildren(itemAtRow(focusedRow()), false);
      return true;
    case Qt::Key_Minus:
      collapseItem(itemAtRow(focusedRow()));
      return true;
    case Qt::Key_Space:
      pressSpace(modifiers);
      return true;
    case Qt::Key_Menu:
      showMenuOfFocusedRow();
      return true;
    case Qt::Key_F10:
      if (modifiers & Qt::ShiftModifier) {
        showMenuOfFocusedRow();
        return true;
      }
      return false;
    default:
      return false;
  }
}

// The nearest row from `row` on, in steps of `step`, that the user may select, or -1.
int OutlineView::selectableRowFrom(int row, int step) {
  while (row >= 0 && row < numberOfRows()) {
    if (mayProposeRow(row)) {
      return row;
    }
    row += step;
  }
  return -1;
}

void OutlineView::moveTo(int row, Qt::KeyboardModifiers modifiers) {
  if (row < 0 || row >= numberOfRows()) {
    return;
  }
  if (modifiers & Qt::ControlModifier) {
    focusRow(row);
  } else if (modifiers & Qt::ShiftModifier && m_allowsMultipleSelection) {
    selectFromAnchor(row);
  } else {
    selectOnly(row);
  }
  scrollRowToVisible(row);
}

void OutlineView::moveByRows(int step, Qt::KeyboardModifiers modifiers) {
  const int focused = focusedRow();
  const int next = focused >= 0 ? focused + step : step > 0 ? 0 : numberOfRows() - 1;
  const bool focusOnly = modifiers & Qt::ControlModifier;
  if (focusOnly || selectedRowIndexes().empty()) {
    moveTo(next, mayProposeRow(next) ? modifiers : Qt::ControlModifier);
  } else {
    moveTo(selectableRowFrom(next, step), modifiers);
  }
}

void OutlineView::moveByPage(int step, Qt::KeyboardModifiers modifiers) {
  const int last = numberOfRows() - 1;
  const int start = std::clamp(focusedRow(), 0, std::max(last, 0));
  const QRectF from = rectOfRow(start);
  const double y = from.center().y() + step * (viewport()->height() - from.height());
  int row = rowAtPoint({from.center().x(), y});
  if (row < 0) {
    row = step > 0 ? last : 0;
  }
  if (!(modifiers & Qt::ControlModifier)) {
    const int onwards = selectableRowFrom(row, step);
    row = onwards >= 0 ? onwards : selectableRowFrom(row, -step);
  }
  moveTo(row, modifiers);
}

void OutlineView::moveToEnd(int step, Qt::KeyboardModifiers modifiers) {
  const int end = step > 0 ? numberOfRows() - 1 : 0;
  moveTo(modifiers & Qt::ControlModifier ? end : selectableRowFrom(end, -step), modifiers);
}

void OutlineView::moveTowardsParent() {
  const int row = focusedRow();
  const OutlineItem item = itemAtRow(row);
  if (!item) {
    return;
  }
  if (isItemExpanded(item)) {
    collapseItem(item);
    if (!isItemExpanded(item)) {
      return;
    }
  }
  int target = row - 1;
  const int level = std::max(levelForRow(row) - 1, 0);
  while (target >= 0 && levelForRow(target) > level) {
    --target;
  }
  moveTo(target, mayProposeRow(target) ? Qt::NoModifier : Qt::ControlModifier);
}

void OutlineView::moveTowardsChildren() {
  const int row = focusedRow();
  const OutlineItem item = itemAtRow(row);
  if (!item) {
    return;
  }
  if (!isItemExpanded(item)) {
    expandItemExpandChildren(item, false);
  } else if (levelForRow(row + 1) > levelForRow(row)) {
    moveTo(row + 1, mayProposeRow(row + 1) ? Qt::NoModifier : Qt::ControlModifier);
  }
}

void OutlineView::pressSpace(Qt::KeyboardModifiers modifiers) {
  const QString typed = m_typeSelect.add(" ");
  if (typed != " ") {
    selectTyped(typed);  // it belongs to a title that is being typed
    return;
  }
  m_typeSelect.end();
  const int row = focusedRow();
  if (!mayProposeRow(row)) {
    toggleItem(itemAtRow(row));
  } else if (modifiers & Qt::ControlModifier) {
    toggleSelectionOf(row);
  } else {
    selectOnly(row);
  }
}

void OutlineView::keyboardSearch(const QString& text) {
  selectTyped(m_typeSelect.add(text));
}

// The next row that the user may select whose title begins with what was typed. The same letter
// again and again goes from one such row to the next.
void OutlineView::selectTyped(const QString& typed) {
  const bool sameLetter = typed.count(typed.front(), Qt::CaseInsensitive) == typed.size();
  const QString beginning = sameLetter ? typed.left(1) : typed;
  const int count = numberOfRows();
  const int start = std::max(focusedRow() + (sameLetter ? 1 : 0), 0);
  for (int i = 0; i < count; ++i) {
    const int row = (start + i) % count;
    const QString title = titleOfItem(itemAtRow(row));
    if (title.startsWith(beginning, Qt::CaseInsensitive) && mayProposeRow(row)) {
      moveTo(row, Qt::NoModifier);
      return;
    }
  }
}

void OutlineView::focusInEvent(QFocusEvent* event) {
  QAbstractItemView::focusInEvent(event);
  emit focusMoved();
}

// Asked only which row has the keyboard at first; keys that move it are handled here.
QModelIndex OutlineView::moveCursor(CursorAction, Qt::KeyboardModifiers) {
  return focusedRow() < 0 ? indexOfRow(0) : QModelIndex();
}

void OutlineView::showMenuOfFocusedRow() {
  const int row = focusedRow();
  if (row >= 0) {
    scrollRowToVisible(row);
  }
  // Without a row it asks for the space below the last one.
  const QPointF below(viewport()->rect().center().x(), viewport()->height() - 1);
  const QPointF position = row >= 0 ? rectOfRow(row).center() : below;
  QMouseEvent press(QEvent::MouseButtonPress, position, viewport()->mapToGlobal(position),
                    Qt::RightButton, Qt::RightButton, Qt::NoModifier);
  popUpMenu(press);
}

bool OutlineView::popUpMenu(QMouseEvent& event) {
  QMenu* menu = menuForEvent(&event);
  if (menu) {
    menu->popup(event.globalPosition().toPoint());
  }
  return menu != nullptr;
}

QMenu* OutlineView::menuForEvent(QMouseEvent*) {
  return m_menu;
}

}  // namespace snaplift
