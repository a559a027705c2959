#pragma once

#include <QFont>
#include <QRect>
#include <QSize>
#include <QString>

#include "widgets/desktop/SelectionColors.h"
#include "widgets/thumbnails/Thumbnail.h"

class QPainter;

namespace snaplift {

// The measures of a cell in device-independent pixels: a frame for the picture, a line for the
// caption under it. The frame is five wide and four high: a photo taken upright is nearly as large
// in it as one that lies, and neither leaves much of it empty.
struct GridCellMetrics {
  QSize picture;
  int captionHeight = 0;
  QFont captionFont;

  // For a view with the font `font` at the zoom `zoom`.
  static GridCellMetrics forZoom(float zoom, const QFont& font);
  QSize cellSize() const { return {picture.width(), picture.height() + captionHeight}; }
};

// Draws the cells of a grid: the picture, with a mark where a part of it is missing or where it is
// a film's, or a placeholder, or a mark for a photo that cannot be shown; the caption; selection
// and focus.
class GridCellPainter {
public:
  struct Cell {
    QRect rect;
    QString title;
    const Thumbnail* thumbnail = nullptr;  // null: nothing known yet
    bool isSelected = false;
    bool hasFocus = false;
  };

  GridCellPainter(QPainter& painter, const QColor& text, const SelectionColors& selection,
                  const GridCellMetrics& metrics);

  void draw(const Cell& cell);
  void drawBand(const QRect& band);

private:
  QColor ink(double strength) const;
  void drawPicture(const QRect& rect, const Thumbnail& thumbnail);
  void drawBlank(const QRect& rect);
  void drawBrokenMark(const QRect& rect, const QString& word);
  void drawDamagedMark(const QRect& rect);
  void drawFilm(const QRect& rect);
  void drawFilmMark(const QRect& rect, const Thumbnail& film);
  void drawCaption(const Cell& cell);

  QPainter& m_painter;
  const GridCellMetrics& m_metrics;
  QColor m_text;
  SelectionColors m_selection;
};

}  // namespace snaplift
