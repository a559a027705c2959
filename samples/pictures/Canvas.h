#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pictures/Color.h"
#include "pictures/Image.h"

namespace snaplift::samples {

// What the painters paint on: a field of light, row by row from the top, in pixels. Shapes have
// soft edges one pixel wide, and what lies outside the field is ignored.
class Canvas {
public:
  Canvas(int width, int height)
      : m_width(width),
        m_height(height),
        m_pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

  int width() const { return m_width; }
  int height() const { return m_height; }
  Color& at(int x, int y) { return m_pixels[index(x, y)]; }
  const Color& at(int x, int y) const { return m_pixels[index(x, y)]; }

  // The light at a place between pixels, of the nearest place inside for one outside.
  Color sample(float x, float y) const;

  // Covers a pixel by `coverage` (0 to 1) with `color`.
  void blend(int x, int y, Color color, float coverage) {
    if (x >= 0 && y >= 0 && x < m_width && y < m_height) {
      Color& pixel = at(x, y);
      pixel = mix(pixel, color, coverage);
    }
  }

  void fillRectangle(float left, float top, float right, float bottom, Color color,
                     float opacity = 1);
  // The pixels of one row from `left` to `right`.
  void fillSpan(int row, float left, float right, Color color, float opacity = 1);
  void fillCircle(float x, float y, float radius, Color color, float opacity = 1);
  // A ring of which only the part from one angle to another is drawn: in turns, clockwise from 12.
  void fillSector(float x, float y, float innerRadius, float outerRadius, float from, float to,
                  Color color);
  void fillRoundedRectangle(float left, float top, float right, float bottom, float radius,
                            Color color, float opacity = 1);
  // A straight stroke with round ends.
  void drawLine(float x1, float y1, float x2, float y2, float width, Color color,
                float opacity = 1);
  // Adds light that fades from the middle to nothing at `radius`.
  void addGlow(float x, float y, float radius, Color light);

private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
           static_cast<std::size_t>(x);
  }

  // Calls distance(x, y) for the middle of each pixel within the bounds, and fills where it is
  // negative.
  template <typename Distance>
  void fill(float left, float top, float right, float bottom, Color color, float opacity,
            Distance distance);

  int m_width, m_height;
  std::vector<Color> m_pixels;
};

// How light becomes a picture. `grain` is the noise of the sensor, `vignette` how far the corners
// darken, both 0 to 1.
struct Development {
  float exposure = 1;
  float grain = 0.3F;
  float vignette = 0.25F;
  std::uint32_t seed = 0;
};

// The photograph of the canvas: exposed, with a film-like shoulder for what is too bright.
Image developed(const Canvas& canvas, const Development& development);

// The canvas as a screen shows it: each colour as it was named, without grain.
Image rendered(const Canvas& canvas);

}  // namespace snaplift::samples
