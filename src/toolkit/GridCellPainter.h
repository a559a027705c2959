#pragma once

#include <QFont>
#include <QPalette>
#include <QRect>
#include <QSize>
#include <QString>

#include "toolkit/Thumbnail.h"

class QPainter;

namespace snaplift {

// The measures of a cell in device-independent pixels: a square for the picture, a line for the
// caption under it.
struct GridCellMetrics {
  int side = 0;
  int captionHeight = 0;
  QFont captionFont;

  // For a view with the font `font` at the zoom `zoom`.
  static GridCellMetrics forZoom(float zoom, const QFont& font);
  QSize cellSize() const { return {side, side + captionHeight}; }
};

// Draws the cells of a grid in the colours of a palette: the picture, or a placeholder, or a mark
// for a photo that cannot be shown; the caption; selection and focus.
class GridCellPainter {
public:
  struct Cell {
    QRect rect;
    QString title;
    const Thumbnail* thumbnail = nullptr;  // null: nothing known yet
    bool isSelected = false;
    bool hasFocus = false;
  };

  GridCellPainter(QPainter& painter, const QPalette& palette, QPalette::ColorGroup group,
                  const GridCellMetrics& metrics);

  void draw(const Cell& cell);
  void drawBand(const QRect& band);

private:
  QColor ink(double strength) const;
  void drawPicture(const QRect& rect, const Thumbnail& thumbnail);
  void drawBlank(const QRect& rect);
  void drawBrokenMark(const QRect& rect);
  void drawCaption(const Cell& cell);

  QPainter& m_painter;
  const GridCellMetrics& m_metrics;
  QColor m_text;
  QColor m_highlight;
  QColor m_highlightedText;
};

}  // namespace snaplift
