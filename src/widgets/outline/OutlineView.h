#pragma once

#include <QAbstractItemView>
#include <QPersistentModelIndex>
#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

#include "widgets/desktop/SelectionColors.h"
#include "widgets/desktop/TypeSelect.h"
#include "widgets/outline/OutlineCell.h"
#include "widgets/outline/OutlineItem.h"
#include "widgets/outline/OutlineModel.h"
#include "widgets/outline/OutlineRows.h"
#include "widgets/outline/OutlineViewDelegate.h"
#include "widgets/outline/RowIndexes.h"

class QMenu;

namespace snaplift {

class OutlineViewDataSource;

// A tree of rows in one column, over a data source that hands out items and a delegate that decides
// (see those two). It exists because the views built on it think in items, row numbers and
// rectangles, all of which they may move; Qt's abstract view beneath does the scrolling, editing
// and dragging. Each thing is kept once: which items are open here, what stands in which row in
// OutlineRows, what is selected and which row has the keyboard in Qt's selection model.
//
// Rows are numbered from 0 as they are shown: what a closed branch hides has none. Rectangles are
// in the coordinates of the viewport, y downward, laid out left to right: mirrored() says where
// they are in a right-to-left view. Items, levels and rows that do not exist answer the absent
// item, level -1, row -1, the empty rectangle.
//
// The user interface's thread only. Data source, delegate and menus stay their owners'.
class OutlineView : public QAbstractItemView {
  Q_OBJECT

public:
  explicit OutlineView(QWidget* parent = nullptr);
  ~OutlineView() override;

  OutlineViewDataSource* dataSource() const { return m_model.dataSource(); }
  // Neither setter reloads.
  void setDataSource(OutlineViewDataSource* dataSource) { m_model.setDataSource(dataSource); }
  void setDelegate(OutlineViewDelegate* delegate);

  // Asks for everything anew. Items that were expanded and are still there stay so; the selection
  // keeps its row numbers, whatever they now show.
  virtual void reloadData();
  // Draws the row of `item` anew, if it has one. Its children stay.
  void reloadItem(OutlineItem item);

  // Settings.
  double rowHeight() const { return m_rowHeight; }
  void setRowHeight(double height);
  double indentationPerLevel() const { return m_indentationPerLevel; }
  void setIndentationPerLevel(double indentation);
  bool allowsEmptySelection() const { return m_allowsEmptySelection; }
  void setAllowsEmptySelection(bool allows) { m_allowsEmptySelection = allows; }
  bool allowsMultipleSelection() const { return m_allowsMultipleSelection; }
  void setAllowsMultipleSelection(bool allows) { m_allowsMultipleSelection = allows; }
  // Whether the column grows with its widest row. Off, and it is as wide as the view.
  bool autoresizesOutlineColumn() const { return m_autoresizesOutlineColumn; }
  void setAutoresizesOutlineColumn(bool autoresizes);
  // What menuForEvent answers unless a subclass knows better.
  void setMenu(QMenu* menu) { m_menu = menu; }
  // The data types that may be dropped here; none at first.
  void registerForDraggedTypes(const QStringList& types);

  // Rows and items.
  int numberOfRows() const;
  OutlineItem itemAtRow(int row) const;
  int rowForItem(OutlineItem item) const;
  // The level of an item that has been shown, even if its branch is closed now.
  int levelForItem(OutlineItem item) const;
  int levelForRow(int row) const;
  bool isItemExpanded(OutlineItem item) const;
  void expandItemExpandChildren(OutlineItem item, bool expandChildren);
  // What was selected inside is selected no more.
  void collapseItem(OutlineItem item);
  // Names of the expanded items for another run, and the way back.
  QVariantList persistentExpandedItems();
  void expandPersistentItems(const QVariantList& objects);

  // Selection. The operations ask nobody; the user's proposals go through the delegate.
  RowIndexes selectedRowIndexes() const;
  int numberOfSelectedRows() const { return static_cast<int>(selectedRowIndexes().size()); }
  // The row that was selected last, or -1.
  int selectedRow() const;
  bool isRowSelected(int row) const;
  // Selects `rows` as well as, or instead of, what is selected. Where only one row may be selected
  // it is the first of them.
  virtual void selectRowIndexesByExtendingSelection(const RowIndexes& requested, bool extend);
  void deselectAll();
  void scrollRowToVisible(int row);
  // The row that is being edited, or -1.
  int editedRow() const;
  // The row that the keyboard acts on, selected or not, or -1.
  int focusedRow() const;

  // Geometry.
  QRectF rectOfRow(int row) const;
  int rowAtPoint(const QPointF& point) const;
  QRectF mirrored(const QRectF& rect) const;
  // The disclosure triangle; empty where there is none.
  virtual QRectF frameOfOutlineCellAtRow(int row);
  virtual QRectF frameOfCellAtColumnRow(int column, int row);

  // Cells. A prepared cell holds the row's value and style until the next is prepared.
  const std::vector<std::unique_ptr<OutlineColumn>>& tableColumns() const { return m_columns; }
  OutlineCell& preparedCellAtColumnRow(int column, int row);

  // What the row's parts are drawn on, in the row's present state.
  QColor backgroundColorOfRow(int row) const;

  // What a screen reader says of a row besides its title and level.
  struct RowDescription {
    QString text;
    bool busy = false;
  };
  virtual RowDescription descriptionOfRow(int row);
  // Plain text: the title where it is cut off.
  virtual QString toolTipOfRow(int row);
  // For the model and the screen readers' interfaces.
  OutlineModel& outlineModel() { return m_model; }
  QVariant objectValueForItem(OutlineItem item);
  // The same as a text of bounded length.
  QString titleOfItem(OutlineItem item);
  bool isGroupRowItem(OutlineItem item);
  bool mayEditItem(OutlineItem item);
  // Lets go of every node; the model calls it before it forgets them.
  void forgetRows();

  // A user's wish to select `rows`, of which `lead` (or the first) shall have the keyboard. The
  // delegate decides; rows that may not be selected stay out.
  void proposeSelection(const RowIndexes& proposed, int lead = -1);
  bool mayProposeRow(int row);
  void focusRow(int row);
  // The menu of the focused row, as the Menu key brings it up.
  void showMenuOfFocusedRow();
  // What a press of the triangle does.
  void toggleItem(OutlineItem item);

  // Qt's own questions, answered from the rows above.
  QRect visualRect(const QModelIndex& index) const override;
  QModelIndex indexAt(const QPoint& point) const override;
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
  void keyboardSearch(const QString& text) override;
  void selectAll() override;
  void doItemsLayout() override;

signals:
  // For screen readers.
  void focusMoved();
  void rowsSelected();
  void itemToggled(OutlineItem item);
  void descriptionChanged(OutlineItem item);
  void rowsForgotten();

protected:
  virtual void drawRowClipRect(QPainter& painter, int row, const QRectF& clip);

  // Event handlers that subclasses extend.
  virtual void keyDown(QKeyEvent* event);
  // A press or double click of any button.
  virtual void mouseDown(QMouseEvent* event);
  // The menu for a press of the right mouse button, or of the left one with Control, at the event's
  // position. Menu key and Shift+F10 ask with a right press in the middle of the focused row. The
  // menu stays its maker's, and must live until it closes.
  virtual QMenu* menuForEvent(QMouseEvent* event);

  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void changeEvent(QEvent* event) override;
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;
  void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void scrollContentsBy(int dx, int dy) override;
  void updateGeometries() override;
  int horizontalOffset() const override;
  int verticalOffset() const override;
  bool isIndexHidden(const QModelIndex& index) const override;
  QRegion visualRegionForSelection(const QItemSelection& selection) const override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
  using Node = OutlineModel::Node;

  const OutlineRows& rows() const;
  Node* nodeAtRow(int row) const;
  QModelIndex indexOfRow(int row) const;
  OutlineColumn& column() const { return *m_columns.front(); }
  int heightOfItem(OutlineItem item);
  int naturalWidthOfRow(int row);
  void rowsDidChange();
  void restoreExpandedItems(Node& parent, const std::unordered_set<OutlineItem>& items);
  void deselectInside(const Node& closing);

  void applySelection(const RowIndexes& chosen);
  void selectOnly(int row);
  void selectFromAnchor(int row);
  void toggleSelectionOf(int row);

  int selectableRowFrom(int row, int step);
  bool moveByKey(const QKeyEvent& event);
  void moveByRows(int step, Qt::KeyboardModifiers modifiers);
  void moveByPage(int step, Qt::KeyboardModifiers modifiers);
  void moveToEnd(int step, Qt::KeyboardModifiers modifiers);
  void moveTo(int row, Qt::KeyboardModifiers modifiers);
  void moveTowardsParent();
  void moveTowardsChildren();
  void pressSpace(Qt::KeyboardModifiers modifiers);
  void selectTyped(const QString& typed);
  bool popUpMenu(QMouseEvent& event);

  void pressRow(int row, QMouseEvent* event);
  bool triangleContains(int row, const QPointF& point);

  SelectionColors selectionColors() const;
  void drawTriangle(QPainter& painter, int row);
  void drawDropIndicator(QPainter& painter);

  OutlineModel m_model;
  OutlineViewDelegate m_defaultDelegate;
  OutlineViewDelegate* m_delegate = &m_defaultDelegate;
  std::vector<std::unique_ptr<OutlineColumn>> m_columns;
  QMenu* m_menu = nullptr;
  double m_rowHeight;
  double m_indentationPerLevel = 16;
  bool m_allowsEmptySelection = true;
  bool m_allowsMultipleSelection = false;
  bool m_autoresizesOutlineColumn = false;
  int m_widestRow = 0;  // while the column grows with it

  std::unordered_set<OutlineItem> m_expandedItems;
  mutable OutlineRows m_rows;  // built when first asked for after a change

  bool m_selectingQuietly = false;          // a reload puts the selection back
  bool m_mouseSelects = false;              // the change comes from a press
  QPersistentModelIndex m_selectionAnchor;  // where a range that Shift extends begins
  QPersistentModelIndex m_lastPressed;      // a double click there is one
  QPersistentModelIndex m_pressedTriangle;  // while the button is down
  QPersistentModelIndex m_pressedSelected;  // one of several selected rows, while a drag may begin
  TypeSelect m_typeSelect;
  std::optional<QPointF> m_dropPoint;  // where the last drag was
};

}  // namespace snaplift
