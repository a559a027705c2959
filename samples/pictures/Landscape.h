#pragma once

#include <optional>
#include <vector>

#include "pictures/Canvas.h"
#include "pictures/Relief.h"
#include "pictures/Sky.h"
#include "pictures/View.h"

namespace snaplift::samples {

// Paints the ground that the camera sees, over a sky that is on the canvas already: each column of
// pixels is walked from near to far, and what rises above all that came before it is painted. The
// light falls and the shadows lie as the sky says; distance and mist take the colours away.
class Landscape {
public:
  struct Air {
    float visibility = 900;  // the distance at which two thirds of the colour are gone
    float mist = 0;          // how thick mist lies in the valleys, from 0 to 1
  };

  // `waterLevel`: the height up to which the land is flooded, where it is.
  Landscape(const Relief& relief, const Sky& sky, const View& view, float eyeHeight, const Air& air,
            std::optional<float> waterLevel);

  void paint(Canvas& canvas) const;

private:
  struct Column;

  float groundLevel(float height) const { return m_water ? std::max(height, *m_water) : height; }
  void castShadows();
  // 1 in the light, 0 in the shadow of something else.
  float litAt(float x, float z, float height) const;
  void walk(Column& column) const;
  Color lightFrom(const Ground& ground, const Column& column, float distance) const;
  void addWater(Canvas& canvas, const std::vector<float>& covered) const;

  const Relief& m_relief;
  const Sky& m_sky;
  const View& m_view;
  float m_eye;
  Air m_air;
  std::optional<float> m_water;
  std::vector<float> m_shadows;  // the height up to which each cell of a grid lies in the shadow
};

}  // namespace snaplift::samples
