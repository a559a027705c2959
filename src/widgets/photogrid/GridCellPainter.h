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
// name under it and perhaps one for a subtitle. The frame is five wide and four high: a photo taken
// upright is nearly as large in it as one that lies, and neither leaves much of it empty.
struct GridCellMetrics {
  static constexpr int captionGap = 8;  // the focus is drawn in it

  QSize picture;
  int nameHeight = 0;
  int subtitleHeight = 0;  // 0 where there is none
  QFont captionFont;

  // For a view with the font `font` at the zoom `zoom`. Small cells have no room for a subtitle.
  static GridCellMetrics forZoom(float zoom, const QFont& font, bool showsSubtitles);
  QSize cellSize() const {
    return {picture.width(), picture.height() + captionGap + nameHeight + subtitleHeight};
  }
};

// Draws the cells of a grid: the picture, with a mark where a part of it is missing or where it is
// a film's or a live photo's, or a placeholder, or a mark for a photo that cannot be shown; the
// caption; selection and focus.
class GridCellPainter {
public:
  struct Cell {
    QRect rect;
    QString title;
    QString subtitle;
    const Thumbnail* thumbnail = nullptr;  // null: nothing known yet
    bool isSelected = false;
    bool hasFocus = false;
    bool isLivePhoto = false;
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
  QRectF drawPill(const QRect& rect, double width, double height);
  void drawFilmMark(const QRect& rect, const Thumbnail& film);
  void drawLiveMark(const QRect& rect);
  void drawPlaySign(QPointF centre, double width);
  void drawCaption(const Cell& cell);

  QPainter& m_painter;
  const GridCellMetrics& m_metrics;
  QColor m_text;
  SelectionColors m_selection;
};

}  // namespace snaplift
