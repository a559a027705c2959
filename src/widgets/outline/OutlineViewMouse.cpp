#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <utility>

#include "widgets/desktop/PlainText.h"
#include "widgets/outline/OutlineView.h"

// What the mouse does. Qt's handlers run too: they begin drags and edits, and select nothing (see
// selectionCommand).

namespace snaplift {

void OutlineView::mousePressEvent(QMouseEvent* event) {
  mouseDown(event);
}

// The second press of a double click is a press too: it may hit another row than the first.
void OutlineView::mouseDoubleClickEvent(QMouseEvent* event) {
  mouseDown(event);
}

void OutlineView::mouseDown(QMouseEvent* event) {
  const int row = rowAtPoint(event->position());
  const OutlineItem item = itemAtRow(row);
  event->accept();
  if (event->button() != Qt::LeftButton) {
    return;  // the right button's menu comes as an event of its own
  }
  if (event->modifiers() & Qt::ControlModifier && popUpMenu(*event)) {
    return;
  }
  if (triangleContains(row, event->position())) {
    m_pressedTriangle = indexOfRow(row);
    return;
  }
  if (item) {
    OutlineCell& cell = preparedCellAtColumnRow(0, row);
    const QRectF frame = mirrored(frameOfCellAtColumnRow(0, row));
    if (frame.contains(event->position()) &&
        m_delegate->outlineViewShouldTrackCellForTableColumnItem(*this, cell, column(), item) &&
        cell.trackMouse(*event, frame)) {
      return;
    }
  }
  // Before the selection changes: Qt tells a press on a selected row from one that selects it.
  const bool secondPress = event->type() == QEvent::MouseButtonDblClick;
  if (secondPress && item && m_lastPressed == indexOfRow(row)) {
    QAbstractItemView::mouseDoubleClickEvent(event);
  } else if (!item || !isGroupRowItem(item)) {
    QAbstractItemView::mousePressEvent(event);
  }
  m_lastPressed = item && !isGroupRowItem(item) ? indexOfRow(row) : QModelIndex();
  m_mouseSelects = true;
  pressRow(rowForItem(item), event);  // Qt's handler may have told somebody who reloaded
  m_mouseSelects = false;
}

void OutlineView::pressRow(int row, QMouseEvent* event) {
  m_pressedSelected = QModelIndex();
  const bool extend = m_allowsMultipleSelection && event->modifiers() & Qt::ShiftModifier;
  const bool toggle = event->modifiers() & Qt::ControlModifier;
  if (row < 0) {
    if (!extend && !toggle) {
      proposeSelection({});
    }
  } else if (extend) {
    selectFromAnchor(row);
  } else if (toggle && (m_allowsMultipleSelection || isRowSelected(row))) {
    toggleSelectionOf(row);
  } else if (isRowSelected(row) && numberOfSelectedRows() > 1) {
    m_pressedSelected = indexOfRow(row);  // all of them may be dragged; a mere click selects this
  } else {
    selectOnly(row);
  }
}

void OutlineView::mouseMoveEvent(QMouseEvent* event) {
  if (!m_pressedTriangle.isValid()) {
    QAbstractItemView::mouseMoveEvent(event);
  }
}

void OutlineView::mouseReleaseEvent(QMouseEvent* event) {
  const QPersistentModelIndex triangle = std::exchange(m_pressedTriangle, {});
  const QPersistentModelIndex pressed = std::exchange(m_pressedSelected, {});
  if (event->button() != Qt::LeftButton) {
    return;
  }
  const int row = rowAtPoint(event->position());
  if (triangle.isValid()) {
    if (indexOfRow(row) == triangle && triangleContains(row, event->position())) {
      toggleItem(itemAtRow(row));
    }
    return;
  }
  QAbstractItemView::mouseReleaseEvent(event);
  if (pressed.isValid() && indexOfRow(row) == pressed) {
    m_mouseSelects = true;
    selectOnly(row);
    m_mouseSelects = false;
  }
}

bool OutlineView::triangleContains(int row, const QPointF& point) {
  if (row < 0) {
    return false;
  }
  // As high as the row and a little wider than it looks: it is small to aim at.
  constexpr double margin = 3;
  QRectF target = mirrored(frameOfOutlineCellAtRow(row));
  if (target.isEmpty()) {
    return false;
  }
  target.adjust(-margin, 0, margin, 0);
  return point.x() >= target.left() && point.x() < target.right();
}

void OutlineView::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Mouse) {
    QMouseEvent press(QEvent::MouseButtonPress, event->pos(), event->globalPos(), Qt::RightButton,
                      Qt::RightButton, event->modifiers());
    event->setAccepted(popUpMenu(press));
  } else {
    showMenuOfFocusedRow();
    event->accept();
  }
}

bool OutlineView::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    const int row = rowAtPoint(help->pos());
    QToolTip::showText(help->globalPos(),
                       row >= 0 ? plainText::toolTip(toolTipOfRow(row)) : QString(), this,
                       rectOfRow(row).toRect());
    return true;
  }
  return QAbstractItemView::viewportEvent(event);
}

QString OutlineView::toolTipOfRow(int row) {
  const double room = frameOfCellAtColumnRow(0, row).width();
  const bool isCut = preparedCellAtColumnRow(0, row).cellSize().width() > room;
  return isCut ? titleOfItem(itemAtRow(row)) : QString();
}

}  // namespace snaplift
