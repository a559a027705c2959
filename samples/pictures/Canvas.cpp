#include "pictures/Canvas.h"

#include <array>
#include <cmath>
#include <numbers>

#include "pictures/Noise.h"

namespace snaplift::samples {
namespace {

constexpr int curveSteps = 4096;
using Curve = std::array<float, curveSteps + 1>;

float screenValue(float light) {
  return light <= 0.0031308F ? light * 12.92F : 1.055F * std::pow(light, 1 / 2.4F) - 0.055F;
}

// The curves are looked up by the square root of the light, which spends the steps on the shadows.
template <typename Function>
Curve tabulated(Function function) {
  Curve curve;
  for (int i = 0; i <= curveSteps; ++i) {
    const float root = static_cast<float>(i) / curveSteps;
    curve[static_cast<std::size_t>(i)] = 255 * screenValue(function(root * root));
  }
  return curve;
}

float lookUp(const Curve& curve, float light, float range) {
  const float position = std::sqrt(clamp01(light / range)) * curveSteps;
  return curve[static_cast<std::size_t>(position)];
}

std::uint8_t byteOf(float value) {
  return static_cast<std::uint8_t>(std::clamp(value + 0.5F, 0.0F, 255.0F));
}

// Light of up to this much differs from white after development.
constexpr float filmRange = 8;

// Linear in the shadows, then a shoulder that bends towards white.
float filmResponse(float light) {
  return clamp01((light * (2.51F * light + 0.03F)) / (light * (2.43F * light + 0.59F) + 0.14F));
}

}  // namespace

Color Canvas::sample(float x, float y) const {
  x = std::clamp(x, 0.0F, static_cast<float>(m_width - 1));
  y = std::clamp(y, 0.0F, static_cast<float>(m_height - 1));
  const int ix = std::min(static_cast<int>(x), m_width - 2);
  const int iy = std::min(static_cast<int>(y), m_height - 2);
  const float fx = x - static_cast<float>(ix), fy = y - static_cast<float>(iy);
  return mix(mix(at(ix, iy), at(ix + 1, iy), fx), mix(at(ix, iy + 1), at(ix + 1, iy + 1), fx), fy);
}

void Canvas::fillRectangle(float left, float top, float right, float bottom, Color color,
                           float opacity) {
  const int first = std::max(0, floorOf(top));
  const int last = std::min(m_height - 1, floorOf(bottom));
  for (int y = first; y <= last; ++y) {
    const auto row = static_cast<float>(y);
    const float coverage = std::min(bottom, row + 1) - std::max(top, row);
    if (coverage > 0) {
      fillSpan(y, left, right, color, opacity * coverage);
    }
  }
}

void Canvas::fillSpan(int row, float left, float right, Color color, float opacity) {
  const int first = std::max(0, floorOf(left));
  const int last = std::min(m_width - 1, floorOf(right));
  for (int x = first; x <= last; ++x) {
    const auto column = static_cast<float>(x);
    const float coverage = std::min(right, column + 1) - std::max(left, column);
    if (coverage > 0) {
      blend(x, row, color, opacity * coverage);
    }
  }
}

template <typename Distance>
void Canvas::fill(float left, float top, float right, float bottom, Color color, float opacity,
                  Distance distance) {
  const int x1 = std::max(0, floorOf(left - 1)), x2 = std::min(m_width - 1, floorOf(right + 1));
  const int y1 = std::max(0, floorOf(top - 1)), y2 = std::min(m_height - 1, floorOf(bottom + 1));
  for (int y = y1; y <= y2; ++y) {
    for (int x = x1; x <= x2; ++x) {
      const float inside =
          0.5F - distance(static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F);
      if (inside > 0) {
        blend(x, y, color, opacity * std::min(inside, 1.0F));
      }
    }
  }
}

void Canvas::fillCircle(float x, float y, float radius, Color color, float opacity) {
  fill(x - radius, y - radius, x + radius, y + radius, color, opacity,
       [=](float px, float py) { return std::hypot(px - x, py - y) - radius; });
}

void Canvas::fillSector(float x, float y, float innerRadius, float outerRadius, float from,
                        float to, Color color) {
  const float middle = (innerRadius + outerRadius) / 2, half = (outerRadius - innerRadius) / 2;
  fill(x - outerRadius, y - outerRadius, x + outerRadius, y + outerRadius, color, 1,
       [=](float px, float py) {
         const float distance = std::hypot(px - x, py - y);
         float turn = std::atan2(px - x, y - py) / (2 * std::numbers::pi_v<float>);
         turn = turn < 0 ? turn + 1 : turn;
         const float past = std::max(from - turn, turn - to);
         return std::max(std::abs(distance - middle) - half,
                         past * 2 * std::numbers::pi_v<float> * distance);
       });
}

void Canvas::fillRoundedRectangle(float left, float top, float right, float bottom, float radius,
                                  Color color, float opacity) {
  const float cx = (left + right) / 2, cy = (top + bottom) / 2;
  const float hx = (right - left) / 2 - radius, hy = (bottom - top) / 2 - radius;
  fill(left, top, right, bottom, color, opacity, [=](float px, float py) {
    const float dx = std::abs(px - cx) - hx, dy = std::abs(py - cy) - hy;
    return std::hypot(std::max(dx, 0.0F), std::max(dy, 0.0F)) + std::min(std::max(dx, dy), 0.0F) -
           radius;
  });
}

void Canvas::drawLine(float x1, float y1, float x2, float y2, float width, Color color,
                      float opacity) {
  const float dx = x2 - x1, dy = y2 - y1, half = width / 2;
  const float lengthSquared = std::max(dx * dx + dy * dy, 1e-6F);
  fill(std::min(x1, x2) - half, std::min(y1, y2) - half, std::max(x1, x2) + half,
       std::max(y1, y2) + half, color, opacity, [=](float px, float py) {
         const float along = clamp01(((px - x1) * dx + (py - y1) * dy) / lengthSquared);
         return std::hypot(px - x1 - along * dx, py - y1 - along * dy) - half;
       });
}

void Canvas::addGlow(float x, float y, float radius, Color light) {
  const int x1 = std::max(0, floorOf(x - radius)), x2 = std::min(m_width - 1, floorOf(x + radius));
  const int y1 = std::max(0, floorOf(y - radius)), y2 = std::min(m_height - 1, floorOf(y + radius));
  for (int py = y1; py <= y2; ++py) {
    for (int px = x1; px <= x2; ++px) {
      const float dx = static_cast<float>(px) + 0.5F - x, dy = static_cast<float>(py) + 0.5F - y;
      const float left = 1 - (dx * dx + dy * dy) / (radius * radius);
      if (left > 0) {
        at(px, py) += light * (left * left * left);
      }
    }
  }
}

Image developed(const Canvas& canvas, const Development& development) {
  static const Curve curve = tabulated([](float light) { return filmResponse(light * filmRange); });
  Image image(canvas.width(), canvas.height());
  const auto w = static_cast<float>(image.width), h = static_cast<float>(image.height);
  for (int y = 0; y < image.height; ++y) {
    const float fy = (static_cast<float>(y) - h / 2) / h;
    for (int x = 0; x < image.width; ++x) {
      const float fx = (static_cast<float>(x) - w / 2) / w;
      const float gain =
          development.exposure * (1 - development.vignette * 2.2F * (fx * fx + fy * fy));
      // One random number serves brightness, and in smaller parts each channel.
      const std::uint32_t random = hashOf(x, y, development.seed);
      const auto part = [random](int shift) {
        return static_cast<float>(random >> shift & 0xFF) / 255 - 0.5F;
      };
      const float brightness = part(0) + part(8);
      const Color light = canvas.at(x, y) * gain;
      const float noiseOf[] = {brightness + 0.6F * part(16), brightness + 0.6F * part(20),
                               brightness + 0.6F * part(24)};
      const float values[] = {light.r, light.g, light.b};
      for (int channel = 0; channel < 3; ++channel) {
        const float value = lookUp(curve, values[channel], filmRange);
        image.pixel(x, y)[channel] = byteOf(value + noiseOf[channel] * (1 + 9 * development.grain));
      }
    }
  }
  return image;
}

Image rendered(const Canvas& canvas) {
  static const Curve curve = tabulated([](float light) { return light; });
  Image image(canvas.width(), canvas.height());
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const Color light = canvas.at(x, y);
      std::uint8_t* pixel = image.pixel(x, y);
      pixel[0] = byteOf(lookUp(curve, light.r, 1));
      pixel[1] = byteOf(lookUp(curve, light.g, 1));
      pixel[2] = byteOf(lookUp(curve, light.b, 1));
    }
  }
  return image;
}

}  // namespace snaplift::samples
