#include "widgets/desktop/SelectionColors.h"

#include <algorithm>
#include <cmath>

namespace snaplift {

SelectionColors selectionColors(const QPalette& palette, QPalette::ColorRole text,
                                QPalette::ColorRole ground, bool hasFocus) {
  const SelectionColors active{palette.color(QPalette::Active, QPalette::Highlight),
                               palette.color(QPalette::Active, QPalette::HighlightedText)};
  if (hasFocus) {
    return active;
  }
  const QColor inactive = palette.color(QPalette::Inactive, QPalette::Highlight);
  if (inactive != active.fill) {
    return {inactive, palette.color(QPalette::Inactive, QPalette::HighlightedText)};
  }
  constexpr double greyness = 0.2;
  const QColor ink = palette.color(QPalette::Active, text);
  return {blended(ink, palette.color(QPalette::Active, ground), greyness), ink};
}

QColor blended(const QColor& over, const QColor& under, double opacity) {
  const auto mix = [&](double a, double b) {
    return static_cast<float>(a * opacity + b * (1 - opacity));
  };
  return QColor::fromRgbF(mix(over.redF(), under.redF()), mix(over.greenF(), under.greenF()),
                          mix(over.blueF(), under.blueF()));
}

double contrast(const QColor& a, const QColor& b) {
  const auto linear = [](double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  const auto luminance = [&](const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
  };
  const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace snaplift
