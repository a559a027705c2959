#pragma once

#include <QColor>
#include <QPalette>

namespace snaplift {

// What a selected thing is painted in.
struct SelectionColors {
  QColor fill;
  QColor text;
};

// `hasFocus`: keys go to the view, in the active window. Otherwise the selection has the palette's
// inactive colours; or, where a desktop's palette makes no difference between them and the active
// ones, a grey of our own: in a window of two lists the user has to see which one the keys go to.
SelectionColors selectionColors(const QPalette& palette, QPalette::ColorRole text,
                                QPalette::ColorRole ground, bool hasFocus);

// `over` painted on `under` with this opacity.
QColor blended(const QColor& over, const QColor& under, double opacity);

// Of two colours in sRGB, as the Web Content Accessibility Guidelines define it: 1 to 21.
double contrast(const QColor& a, const QColor& b);

}  // namespace snaplift
