#pragma once

#include <QFont>
#include <QPalette>
#include <QRect>
#include <QString>

class QPainter;

namespace snaplift {

// The line above a group of photos: its title, and how many they are.
struct GridHeader {
  QRect rect;
  int margin = 0;  // from its sides to where the photos begin
  QString title;
  QString count;
  bool isHeld = false;      // over photos that are scrolled under it
  bool isMirrored = false;  // begins on the right
};

// How high it is for a view with the font `font`, in device-independent pixels.
int gridHeaderHeight(const QFont& font);

// Paints it, its ground too, for a view with this font and palette.
void drawGridHeader(QPainter& painter, const GridHeader& header, const QFont& font,
                    const QPalette& palette);

}  // namespace snaplift
