#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace snaplift::samples {

// Light, not a screen value: linear in energy, 1 is white paper in the sun, more is possible. All
// painting happens in this space, since only there do glow, mist and shadow add up as outdoors.
struct Color {
  float r = 0, g = 0, b = 0;

  friend Color operator+(Color x, Color y) { return {x.r + y.r, x.g + y.g, x.b + y.b}; }
  friend Color operator-(Color x, Color y) { return {x.r - y.r, x.g - y.g, x.b - y.b}; }
  friend Color operator*(Color x, Color y) { return {x.r * y.r, x.g * y.g, x.b * y.b}; }
  friend Color operator*(Color x, float f) { return {x.r * f, x.g * f, x.b * f}; }
  Color& operator+=(Color other) { return *this = *this + other; }
};

inline float clamp01(float value) {
  return std::clamp(value, 0.0F, 1.0F);
}

inline float mix(float a, float b, float t) {
  return a + (b - a) * t;
}

inline Color mix(Color a, Color b, float t) {
  return a + (b - a) * t;
}

// 0 up to `from`, 1 from `to` on, and a soft step between the two; `from` may be the larger one.
inline float smoothstep(float from, float to, float value) {
  const float t = clamp01((value - from) / (to - from));
  return t * t * (3 - 2 * t);
}

// The light of a screen colour written as 0xRRGGBB (sRGB).
inline Color srgb(std::uint32_t hex) {
  const auto channel = [](std::uint32_t byte) {
    const float v = static_cast<float>(byte & 0xFF) / 255;
    return v <= 0.04045F ? v / 12.92F : std::pow((v + 0.055F) / 1.055F, 2.4F);
  };
  return {channel(hex >> 16), channel(hex >> 8), channel(hex)};
}

}  // namespace snaplift::samples
