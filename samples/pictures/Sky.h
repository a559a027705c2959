#pragma once

#include <cstdint>

#include "pictures/Color.h"
#include "pictures/Noise.h"
#include "pictures/View.h"

namespace snaplift::samples {

enum class Daytime { Dawn, Morning, Noon, Overcast, Golden, Dusk, BlueHour, Night };

// A sky and the light that falls from it on what stands below. The sun of the daytimes near the
// night stands in the picture, the sun of the others behind the camera to one side; by night it is
// the moon.
class Sky {
public:
  Sky(Daytime daytime, float cloudCover, Random& random);

  // Paints the whole canvas; stars and moon included.
  void paint(Canvas& canvas, const View& view) const;

  // The light of the sky, without its clouds, in a direction (slopes right and up).
  Color clearLight(float right, float up) const;

  // What far things fade into, in the direction `right`.
  Color haze(float right) const { return clearLight(right, 0.015F); }

  Daytime daytime() const { return m_daytime; }
  Color sunlight() const { return m_sunlight; }
  Color ambient() const { return m_ambient; }
  // The direction towards the light, of length 1: right, up, ahead.
  float lightRight() const { return m_light[0]; }
  float lightUp() const { return m_light[1]; }
  float lightAhead() const { return m_light[2]; }

private:
  void paintClouds(Canvas& canvas, const View& view) const;
  void paintStars(Canvas& canvas, const View& view) const;
  void paintMoon(Canvas& canvas, const View& view) const;

  Daytime m_daytime;
  float m_cloudCover;
  std::uint32_t m_seed;
  Color m_zenith, m_middle, m_horizon, m_glow, m_sunlight, m_ambient, m_cloudLit, m_cloudShade;
  float m_sunRight = 0, m_sunUp = 0;
  bool m_sunInView = false;
  float m_light[3] = {};
};

}  // namespace snaplift::samples
