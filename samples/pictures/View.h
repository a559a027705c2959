#pragma once

#include <algorithm>

#include "pictures/Canvas.h"

namespace snaplift::samples {

// The camera of a landscape: level, so that the horizon is a straight row. Directions are given as
// slopes: how far right and how far up for each step ahead.
struct View {
  View(const Canvas& canvas, float horizonAt)
      : centre(static_cast<float>(canvas.width()) / 2),
        horizon(static_cast<float>(canvas.height()) * horizonAt),
        focal(0.95F * static_cast<float>(std::max(canvas.width(), canvas.height()))) {}

  float rightAt(float x) const { return (x - centre) / focal; }
  float upAt(float y) const { return (horizon - y) / focal; }
  float xOf(float right) const { return centre + right * focal; }
  float yOf(float up) const { return horizon - up * focal; }

  float centre, horizon;  // pixels
  float focal;            // pixels for a slope of 1
};

}  // namespace snaplift::samples
