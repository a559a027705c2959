#include "pictures/Landscape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace snaplift::samples {
namespace {

// Light, not a screen value: 1 is white paper in the sun, more is possible. Glow and mist add up in
// it as outdoors.
struct Color {
  float r, g, b;
  constexpr Color(float red, float green, float blue) : r(red), g(green), b(blue) {}
  // The light of a screen colour written as 0xRRGGBB, near enough to sRGB.
  constexpr Color(unsigned hex) : r(lightOf(hex >> 16)), g(lightOf(hex >> 8)), b(lightOf(hex)) {}
  static constexpr float lightOf(unsigned hex) {
    const float value = static_cast<float>(hex & 0xFF) / 255;
    return value * value;
  }

  friend constexpr Color operator+(Color x, Color y) { return {x.r + y.r, x.g + y.g, x.b + y.b}; }
  friend constexpr Color operator*(Color x, Color y) { return {x.r * y.r, x.g * y.g, x.b * y.b}; }
  friend constexpr Color operator*(Color x, float f) { return {x.r * f, x.g * f, x.b * f}; }
};

Color mix(Color a, Color b, float share) {
  return a * (1 - share) + b * share;
}

// 0 up to `from`, 1 from `to` on, a soft step between; `from` may be the larger one.
float step(float from, float to, float value) {
  const float t = std::clamp((value - from) / (to - from), 0.0F, 1.0F);
  return t * t * (3 - 2 * t);
}

// Everything that looks random is hashed from places, so that a seed always paints the same picture
// (the distributions of the standard library do not promise that). From 0 up to 1.
float hashed(float x, float y, unsigned seed) {
  unsigned h = static_cast<unsigned>(static_cast<int>(x)) * 0x9E3779B1U +
               static_cast<unsigned>(static_cast<int>(y)) * 0x85EBCA77U + seed * 0xC2B2AE3DU;
  h = (h ^ h >> 15) * 0x2C1B3C6DU;
  h = (h ^ h >> 13) * 0x297A2D39U;
  return static_cast<float>((h ^ h >> 16) >> 8) * (1.0F / 16777216);
}

// Smooth noise from 0 to 1 with one free value at each whole x and y.
float noise(float x, float y, unsigned seed) {
  const float left = std::floor(x), top = std::floor(y), u = step(0, 1, x - left);
  const float above = std::lerp(hashed(left, top, seed), hashed(left + 1, top, seed), u);
  const float below = std::lerp(hashed(left, top + 1, seed), hashed(left + 1, top + 1, seed), u);
  return std::lerp(above, below, step(0, 1, y - top));
}

// Layers of noise, each of half the size and strength of the one before, and turned: otherwise the
// lattice of all layers shows as a grid.
float fractal(float x, float y, int layers, unsigned seed) {
  float sum = 0, weight = 0.5F;
  for (; layers > 0; --layers, weight /= 2) {
    sum += weight * noise(x, y, seed++);
    x = std::exchange(y, 1.2F * x + 1.6F * y) * -1.2F + 1.6F * x;
  }
  return sum / (1 - 2 * weight);
}

// The light of one time of the day and year; how high the sun stands, in heights of the picture.
struct Daytime {
  Color zenith, horizon, sun, ground, forest;
  float sunHeight, stars;
};

constexpr std::array daytimes = {
    Daytime{0x2F74C8, 0xCFE6F5, 0xFFFBF0, 0x7FA64A, 0x2C5230, 0.62F, 0},      // a summer noon
    Daytime{0x5B8CC4, 0xFFDDA0, 0xFFD890, 0x9A8A3C, 0x3A3E1E, 0.16F, 0},      // a golden evening
    Daytime{0x3A2C66, 0xFF8A5C, 0xFFA060, 0x6A3A46, 0x22162A, 0.05F, 0},      // the sun just down
    Daytime{0x12244E, 0x86A8D0, 0xF8C8A0, 0x3C506E, 0x101C2E, 0.01F, 0.35F},  // the blue hour
    Daytime{0x7C8CC0, 0xFBD3C0, 0xFFE2B8, 0x768A6A, 0x2E4440, 0.10F, 0},      // dawn
    Daytime{0x6E9ED4, 0xEAF1F8, 0xFFF6E8, 0xE6EEF6, 0x4A6270, 0.42F, 0},      // winter
    Daytime{0x6C8DAA, 0xF2E4CC, 0xFFE8C0, 0xB08A3A, 0x8A4A20, 0.30F, 0},      // autumn
    Daytime{0x081228, 0x2C4470, 0xDDE6FF, 0x22304A, 0x0A1220, 0.45F, 1}};     // a night with a moon

// What stands one behind the other, the farthest first: Rock, Meadow, Firs, Dunes; at last there is
// a Lake, or none.
constexpr std::array lands = {"RRMFFF-", "RRMFL", "MFMFMFM-", "MMFFFFFFF-", "DDDDD-", "MML"};

// One range of hills in one column of the picture.
struct Range {
  char ground;
  float nearness;  // 0 at the horizon, 1 at the viewer's feet
  unsigned seed;
  float ridge = 0;  // where it begins
};

// Lengths are in heights of the picture, y downwards: a view is the same in every size.
class Landscape {
public:
  Landscape(unsigned seed, float width) : m_number(seed), m_width(width) {}

  std::vector<Range> rangesAt(float x) const {
    std::vector<Range> ranges;
    const std::size_t count = m_land.size() - 1;
    for (unsigned i = 0; i < count; ++i) {
      const float near = static_cast<float>(i) / static_cast<float>(count - 1);
      Range& range = ranges.emplace_back(Range{m_land[i], near, m_seed + i * 10});
      const float foot = m_hasLake ? 0 : (0.95F - m_horizon) * near * near;
      range.ridge = m_horizon + foot - heightOf(range, x);
    }
    return ranges;
  }

  Color at(float x, float y, const std::vector<Range>& ranges) const {
    if (m_hasLake && y > m_horizon) {
      return waterAt(x, y - m_horizon, ranges);
    }
    for (std::size_t i = ranges.size(); i-- > 0;) {
      const Range& range = ranges[i];
      if (const float below = y - range.ridge; below >= 0) {
        const float far = 1 - range.nearness, mist = m_mist * step(0, 0.16F, below);
        return mix(groundAt(range, x, y, below) * m_sunlight, m_time.horizon * 0.95F,
                   std::min(1.0F, far * (0.62F * far + mist)));
      }
    }
    return skyAt(x, y);
  }

private:
  // How high a range stands above its foot.
  float heightOf(const Range& range, float x) const {
    const auto& [ground, near, seed, ridge] = range;
    if (ground == 'R') {
      return (0.42F - 0.2F * near) * (0.35F + 0.65F * noise(x * 1.3F, 9, seed)) *
             (1 - 2 * std::abs(fractal(x * (1.8F + near), 3, 6, seed) - 0.5F));
    }
    if (ground == 'D') {
      return 0.09F - 0.3F * std::abs(fractal(x * 1.4F, 5, 2, seed) - 0.5F);
    }
    const float hill = (m_hasLake ? 0.06F : 0.1F + 0.08F * near) *
                       (fractal(x * (3 - 1.5F * near), 0, 5, seed) - 0.3F);
    // The tallest of the firs around: cones with a ragged edge.
    const float spacing = 0.004F + 0.02F * near * near;
    float tallest = 0;
    for (float i = -2; i <= 2 && ground == 'F'; ++i) {
      const float fir = std::floor(x / spacing) + i;
      const float size = (1.6F + 2.4F * hashed(fir, 1, seed)) * spacing;
      const float part = 1 - std::abs(x - (fir + hashed(fir, 2, seed)) * spacing) / (0.2F * size);
      tallest = std::max(tallest, (part - 0.05F * std::fmod(part * 9 + 99, 1.0F)) * size);
    }
    return std::max(hill + tallest, m_hasLake ? 0.002F : -1);
  }

  // What the ground shows at a place that lies so far below its ridge.
  Color groundAt(const Range& range, float x, float y, float below) const {
    const unsigned seed = range.seed + 100;
    const float scale = 60 - 45 * range.nearness;
    if (range.ground == 'F') {
      return m_time.forest * (0.75F + 0.5F * noise(x * scale * 6, y * scale * 3, seed));
    }
    if (range.ground == 'R') {
      const float side = m_sunX < m_width / 2 ? -3 : 3, lean = x * 6 + below * side;
      const float slope = fractal(lean + 0.012F * side, below * 7, 5, seed) -
                          fractal(lean - 0.012F * side, below * 7, 5, seed);
      const float snow = 0.13F - below + 0.25F * (fractal(x * 16, y * 22, 4, seed) - 0.5F);
      return mix(mix(m_time.forest, 0x8A8580, 0.5F), {0.86F, 0.88F, 0.9F}, step(0, 0.03F, snow)) *
             std::clamp(0.75F + 9 * slope, 0.3F, 1.25F);
    }
    if (range.ground == 'D') {
      const float lee = step(0.47F, 0.53F, fractal(x * 1.4F + below * 2, 5, 2, range.seed));
      const float ripples = noise(x * 3, y * 110 / (0.35F + range.nearness), seed);
      return mix(0xD9A860, m_time.ground, 0.35F) * (0.65F + 0.1F * ripples + 0.4F * lee);
    }
    const float field = step(0.5F, 0.53F, fractal(x * scale * 0.12F, y * scale * 0.5F, 2, seed));
    return mix(m_time.ground, m_time.forest, 0.75F * field) *
           (0.8F + 0.35F * fractal(x * scale * 2, y * scale * 5, 4, seed));
  }

  Color skyAt(float x, float y) const {
    const float height = std::max(0.0F, m_horizon - y) / m_horizon, away = 1 / (height + 0.12F);
    const float distance = std::hypot(x - m_sunX, y - m_horizon + m_time.sunHeight);
    const float glow = 0.012F / (0.02F + distance * distance) * (1 - m_time.stars);
    const float star = m_time.stars * height * step(0.9F, 1, noise(x * 250, y * 250, m_seed));
    const float cloud = fractal((x - 0.6F) * away * 1.2F, away * 2.6F, 6, m_seed + 500);
    const Color clear = mix(m_time.horizon, m_time.zenith, std::pow(height, 0.65F));
    const Color lit = mix(m_time.horizon, m_time.sun, 0.5F) * (0.95F + 0.6F * glow);
    return mix(mix(clear + m_time.sun * (0.8F * glow + star), m_time.sun * 2.5F,
                   step(0.03F, 0.027F, distance)),
               mix(lit, m_time.zenith, 0.35F * step(0.6F, 0.9F, cloud)),
               0.85F * step(0.56F, 0.8F, cloud) * step(0, 0.15F, height));
  }

  // What the water mirrors, in waves that grow towards the viewer, and the path of the sun on it.
  Color waterAt(float x, float depth, const std::vector<Range>& ranges) const {
    const float away = 1 / (depth + 0.03F), aside = (x - m_sunX) / (0.03F + 0.25F * depth);
    const float wave =
        fractal((x - 0.6F) * away * 3, away * (40 * depth + 4), 4, m_seed + 700) - 0.5F;
    const float mirrored = m_horizon - 0.95F * depth + wave * (0.01F + 0.22F * depth);
    const float path = std::exp(-aside * aside) * step(0.04F, 0.16F, wave);
    return mix(at(x, std::clamp(mirrored, 0.0F, m_horizon), ranges) * 0.9F, m_time.zenith * 0.35F,
               std::min(0.75F, 0.15F + 0.9F * depth)) +
           m_time.sun * (path * step(0.6F, 0.1F, m_time.sunHeight));
  }

  const unsigned m_number, m_seed = m_number * 1000;
  const float m_width, m_horizon = 0.46F + 0.12F * hashed(1, 0, m_seed);
  const float m_sunX = m_width * (0.15F + 0.7F * hashed(2, 0, m_seed));
  const float m_mist = hashed(3, 0, m_seed) * hashed(4, 0, m_seed);
  const Daytime& m_time =
      daytimes[(m_number / lands.size() * 3 + std::size_t{m_number} * 5) % daytimes.size()];
  const Color m_sunlight = mix(m_time.sun, m_time.horizon, 0.5F) * (1 - 0.55F * m_time.stars);
  const std::string_view m_land = lands[m_number % lands.size()];
  const bool m_hasLake = m_land.back() == 'L';
};

}  // namespace

Image paintLandscape(std::uint32_t seed, int width, int height) {
  const float pixel = 1.0F / static_cast<float>(height);
  const Landscape landscape(seed, static_cast<float>(width) * pixel);
  Image image(width, height);
  for (int column = 0; column < width; ++column) {
    const float x = (static_cast<float>(column) + 0.5F) * pixel;
    const std::vector<Range> ranges = landscape.rangesAt(x);
    for (int row = 0; row < height; ++row) {
      const float y = (static_cast<float>(row) + 0.5F) * pixel;
      const Color color = landscape.at(x, y, ranges);
      const float grain = 0.02F * (noise(x / pixel, y / pixel, seed) - 0.5F);
      std::uint8_t* channel = image.pixel(column, row);
      for (const float light : {color.r, color.g, color.b}) {
        const float value = std::sqrt(1.15F * light / (1 + 0.15F * light)) + grain;
        *channel++ = static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255));
      }
    }
  }
  return image;
}

}  // namespace snaplift::samples
