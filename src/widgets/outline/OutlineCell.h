#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>
#include <QVariant>
#include <optional>

class QMouseEvent;
class QPainter;
class QWidget;

namespace snaplift {

// What draws one value in a row: by default a line of plain text, cut with an ellipsis where it
// does not fit, and where it is longer than anybody reads. One cell serves all the rows of a
// column, prepared anew for each; so nothing about a row may be kept in it. Sizes and frames are in
// device-independent pixels.
class OutlineCell {
public:
  enum class Type { Null, Text, Image };

  OutlineCell() = default;
  OutlineCell(const OutlineCell&) = delete;
  OutlineCell& operator=(const OutlineCell&) = delete;
  virtual ~OutlineCell() = default;

  virtual Type type() const { return Type::Text; }

  const QVariant& objectValue() const { return m_objectValue; }
  void setObjectValue(const QVariant& value);
  const QFont& font() const { return m_font; }
  void setFont(const QFont& font);
  QColor textColor() const { return m_textColor; }
  void setTextColor(const QColor& color) { m_textColor = color; }

  // The natural size: all of the text in one line.
  virtual QSizeF cellSize() const;
  // The size that is needed where only `bounds` are at hand.
  virtual QSizeF cellSizeForBounds(const QRectF& bounds) const;
  virtual void drawWithFrame(QPainter& painter, const QRectF& frame, Qt::LayoutDirection direction);
  // A press inside `frame` of a cell that reacts by itself, like a button: true takes the event.
  virtual bool trackMouse(QMouseEvent&, const QRectF& /*frame*/) { return false; }

private:
  QVariant m_objectValue;
  QString m_text;
  QFont m_font;
  QColor m_textColor;
  mutable std::optional<QSizeF> m_cellSize;  // of m_text in m_font; measuring shapes the text
};

// The column of an outline: it has the cell that its rows are drawn with.
class OutlineColumn {
public:
  virtual ~OutlineColumn() = default;
  virtual OutlineCell& dataCellForRow(int /*row*/) { return m_dataCell; }

private:
  OutlineCell m_dataCell;
};

}  // namespace snaplift
