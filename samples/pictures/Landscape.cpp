#include "pictures/Landscape.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace snaplift::samples {
namespace {

// Light, not a screen value: 1 is white paper in the sun, more is possible. Glow and mist add up in
// it as outdoors.
struct Color {
  float r = 0, g = 0, b = 0;

  friend constexpr Color operator+(Color x, Color y) { return {x.r + y.r, x.g + y.g, x.b + y.b}; }
  friend constexpr Color operator*(Color x, float f) { return {x.r * f, x.g * f, x.b * f}; }
  friend constexpr Color operator*(Color x, Color y) { return {x.r * y.r, x.g * y.g, x.b * y.b}; }
};

// The light of a screen colour written as 0xRRGGBB, near enough to sRGB.
constexpr Color light(std::uint32_t hex) {
  const auto channel = [hex](int shift) {
    const float value = static_cast<float>(hex >> shift & 0xFF) / 255;
    return value * value;
  };
  return {channel(16), channel(8), channel(0)};
}

constexpr Color mix(Color a, Color b, float share) {
  return a * (1 - share) + b * share;
}

// 0 up to `from`, 1 from `to` on, a soft step between; `from` may be the larger one.
float step(float from, float to, float value) {
  const float t = std::clamp((value - from) / (to - from), 0.0F, 1.0F);
  return t * t * (3 - 2 * t);
}

// Everything that looks random is hashed from places, so that a seed always paints the same picture
// (the distributions of the standard library do not promise that). From 0 up to 1.
float hashed(int x, int y, std::uint32_t seed) {
  std::uint32_t h = static_cast<std::uint32_t>(x) * 0x9E3779B1U +
                    static_cast<std::uint32_t>(y) * 0x85EBCA77U + seed * 0xC2B2AE3DU;
  h = (h ^ h >> 15) * 0x2C1B3C6DU;
  h = (h ^ h >> 13) * 0x297A2D39U;
  return static_cast<float>((h ^ h >> 16) >> 8) * (1.0F / 16777216);
}

// Smooth noise from 0 to 1 with one free value at each whole x and y.
float noise(float x, float y, std::uint32_t seed) {
  const float left = std::floor(x), top = std::floor(y);
  const int ix = static_cast<int>(left), iy = static_cast<int>(top);
  const float u = step(0, 1, x - left), v = step(0, 1, y - top);
  const float a = hashed(ix, iy, seed), b = hashed(ix + 1, iy, seed);
  const float c = hashed(ix, iy + 1, seed), d = hashed(ix + 1, iy + 1, seed);
  return a + (b - a) * u + (c - a) * v + (a - b - c + d) * u * v;
}

// Layers of noise, each of half the size and strength of the one before.
float fractal(float x, float y, int layers, std::uint32_t seed) {
  float sum = 0, weight = 0.5F;
  for (; layers > 0; --layers, weight /= 2) {
    sum += weight * noise(x, y, seed++);
    // Turned as well as doubled: otherwise the lattice of all layers shows as a grid.
    const float turned = 1.6F * x - 1.2F * y;
    y = 1.2F * x + 1.6F * y;
    x = turned;
  }
  return sum / (1 - 2 * weight);
}

// The light of one time of the day and year.
struct Daytime {
  Color zenith, horizon, sun, ground, forest;
  float sunHeight;  // above the horizon, in heights of the picture
  float clouds, stars;
};

constexpr std::array daytimes = {
    // a summer noon, a golden evening, the sun just down, the blue hour
    Daytime{light(0x2F74C8), light(0xCFE6F5), light(0xFFFBF0), light(0x7FA64A), light(0x2C5230),
            0.62F, 0.55F, 0},
    Daytime{light(0x5B8CC4), light(0xFFDDA0), light(0xFFD890), light(0x9A8A3C), light(0x3A3E1E),
            0.16F, 0.45F, 0},
    Daytime{light(0x3A2C66), light(0xFF8A5C), light(0xFFA060), light(0x6A3A46), light(0x22162A),
            0.05F, 0.6F, 0},
    Daytime{light(0x12244E), light(0x86A8D0), light(0xF8C8A0), light(0x3C506E), light(0x101C2E),
            0.01F, 0.35F, 0.35F},
    // dawn, winter, autumn, a night with a moon
    Daytime{light(0x7C8CC0), light(0xFBD3C0), light(0xFFE2B8), light(0x768A6A), light(0x2E4440),
            0.10F, 0.35F, 0},
    Daytime{light(0x6E9ED4), light(0xEAF1F8), light(0xFFF6E8), light(0xE6EEF6), light(0x4A6270),
            0.42F, 0.4F, 0},
    Daytime{light(0x6C8DAA), light(0xF2E4CC), light(0xFFE8C0), light(0xB08A3A), light(0x8A4A20),
            0.30F, 0.6F, 0},
    Daytime{light(0x081228), light(0x2C4470), light(0xDDE6FF), light(0x22304A), light(0x0A1220),
            0.45F, 0.25F, 1},
};

// What a range of hills is made of.
enum class Ground { Meadow, Firs, Rock, Sand };

// The ranges, the farthest first, and whether there is water before them.
struct Land {
  std::vector<Ground> ranges;
  bool water;
};

const std::array lands = {
    Land{{Ground::Rock, Ground::Rock, Ground::Meadow, Ground::Firs, Ground::Firs, Ground::Firs},
         false},
    Land{{Ground::Rock, Ground::Rock, Ground::Meadow, Ground::Firs}, true},
    Land{{Ground::Meadow, Ground::Firs, Ground::Meadow, Ground::Firs, Ground::Meadow, Ground::Firs,
          Ground::Meadow},
         false},
    Land{{Ground::Meadow, Ground::Meadow, Ground::Firs, Ground::Firs, Ground::Firs, Ground::Firs,
          Ground::Firs, Ground::Firs, Ground::Firs},
         false},
    Land{std::vector<Ground>(5, Ground::Sand), false},
    Land{std::vector<Ground>(2, Ground::Meadow), true},
};

struct Range {
  Ground ground;
  float nearness;  // 0 at the horizon, 1 at the viewer's feet
  std::uint32_t seed;
  std::vector<float> ridge;  // for each column of pixels, where it begins
};

// Lengths are in heights of the picture, y downwards: a view is the same in every size.
class Landscape {
public:
  Landscape(std::uint32_t seed, int width, int height)
      : m_seed(seed * 1000),
        m_time(daytimes[(seed / lands.size() * 3 + std::size_t{seed} * 5) % daytimes.size()]),
        m_pixel(1.0F / static_cast<float>(height)),
        m_horizon(0.46F + 0.12F * hashed(1, 0, m_seed)),
        m_sunX(static_cast<float>(width) * m_pixel * (0.15F + 0.7F * hashed(2, 0, m_seed))),
        m_lightSide(hashed(2, 0, m_seed) < 0.5F ? -1.0F : 1.0F),
        m_mist(hashed(3, 0, m_seed) * hashed(4, 0, m_seed)),
        m_water(lands[seed % lands.size()].water) {
    const std::vector<Ground>& ranges = lands[seed % lands.size()].ranges;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
      const float nearness = static_cast<float>(i) / static_cast<float>(ranges.size() - 1);
      Range range{ranges[i], nearness, m_seed + static_cast<std::uint32_t>(i) * 10, {}};
      const float foot = m_water ? 0 : (0.95F - m_horizon) * nearness * nearness;
      for (int column = 0; column < width; ++column) {
        const float above = heightOf(range, static_cast<float>(column) * m_pixel);
        range.ridge.push_back(m_horizon + foot - (m_water ? std::max(above, 0.002F) : above));
      }
      m_ranges.push_back(std::move(range));
    }
  }

  Color at(float x, float y) const {
    if (m_water && y > m_horizon) {
      return waterAt(x, y);
    }
    const auto column = std::min(static_cast<std::size_t>(std::max(x, 0.0F) / m_pixel),
                                 m_ranges[0].ridge.size() - 1);
    for (std::size_t i = m_ranges.size(); i-- > 0;) {
      const Range& range = m_ranges[i];
      const float below = y - range.ridge[column];
      if (below >= 0) {
        const Color sunlight = mix(m_time.sun, m_time.horizon, 0.5F) * (1 - 0.55F * m_time.stars);
        const float far = 1 - range.nearness;
        const float mist = m_mist * step(0, 0.16F, below) * far;
        return mix(groundAt(range, x, y, below) * sunlight, m_time.horizon * 0.95F,
                   std::min(1.0F, 0.62F * far * far + mist));
      }
    }
    return skyAt(x, y);
  }

private:
  // How high a range stands above its foot.
  float heightOf(const Range& range, float x) const {
    if (range.ground == Ground::Rock) {
      const float wave = fractal(x * (1.8F + range.nearness), 3, 6, range.seed);
      return (0.42F - 0.2F * range.nearness) * (1 - 2 * std::abs(wave - 0.5F)) *
             (0.35F + 0.65F * noise(x * 1.3F, 9, range.seed));
    }
    if (range.ground == Ground::Sand) {
      return 0.24F - 0.3F * std::abs(fractal(x * 1.4F, 5, 2, range.seed) - 0.5F) - 0.15F;
    }
    const float size = m_water ? 0.06F : 0.1F + 0.08F * range.nearness;
    const float hill = size * (fractal(x * (3 - 1.5F * range.nearness), 0, 5, range.seed) - 0.3F);
    return range.ground == Ground::Firs ? hill + firHeight(range, x) : hill;
  }

  // How high the tallest fir at x stands above the ground.
  static float firHeight(const Range& range, float x) {
    const float spacing = 0.004F + 0.02F * range.nearness * range.nearness;
    const int here = static_cast<int>(x / spacing);
    float highest = 0;
    for (int fir = here - 2; fir <= here + 2; ++fir) {
      const float size = (1.6F + 2.4F * hashed(fir, 1, range.seed)) * spacing;
      const float middle = (static_cast<float>(fir) + hashed(fir, 2, range.seed)) * spacing;
      const float part = 1 - std::abs(x - middle) / (0.2F * size);
      const float twigs = 0.05F * (part * 9 - std::floor(part * 9));
      highest = std::max(highest, (part - twigs) * size);
    }
    return highest;
  }

  Color skyAt(float x, float y) const {
    const float height = std::max(0.0F, m_horizon - y) / m_horizon;
    const float distance = std::hypot(x - m_sunX, y - (m_horizon - m_time.sunHeight));
    const float glow = 0.012F / (0.02F + distance * distance) * (1 - m_time.stars);
    Color color = mix(m_time.horizon, m_time.zenith, std::pow(height, 0.65F));
    color = color + m_time.sun * (0.8F * glow) + Color{1, 1, 1} * (starAt(x, y) * height);
    color = mix(color, m_time.sun * 2.5F, step(0.03F, 0.027F, distance));
    const float away = 1 / (height + 0.12F);
    const float cloud =
        fractal((x - 0.6F) * away * 1.2F, away * 2.6F, 6, m_seed + 500) + 0.3F * m_time.clouds;
    const Color lit = mix(m_time.horizon, m_time.sun, 0.5F) * (0.95F + 0.6F * glow);
    return mix(color, mix(lit, m_time.zenith, 0.35F * step(0.75F, 1.05F, cloud)),
               0.85F * step(0.72F, 0.95F, cloud) * step(0, 0.15F, height));
  }

  float starAt(float x, float y) const {
    constexpr float cell = 0.007F;
    const float column = std::floor(x / cell), row = std::floor(y / cell);
    const float bright = hashed(static_cast<int>(column), static_cast<int>(row), m_seed) - 0.965F;
    const float distance = std::hypot(x / cell - column - 0.5F, y / cell - row - 0.5F);
    return 45 * m_time.stars * std::max(0.0F, bright) * step(0.35F, 0, distance);
  }

  // What the ground shows at a place that lies so far below its ridge.
  Color groundAt(const Range& range, float x, float y, float below) const {
    const std::uint32_t seed = range.seed + 100;
    const float scale = 60 - 45 * range.nearness;
    switch (range.ground) {
      case Ground::Firs:
        return m_time.forest * (0.75F + 0.5F * noise(x * scale * 6, y * scale * 3, seed));
      case Ground::Rock: {
        const auto relief = [&](float at) {
          return fractal(at * 6 + below * m_lightSide * 3, below * 7, 5, seed);
        };
        const float slope = (relief(x + 0.006F) - relief(x - 0.006F)) * m_lightSide;
        const float snow = 0.13F - below + 0.25F * (fractal(x * 16, y * 22, 4, seed) - 0.5F);
        const Color rock = mix(mix(m_time.forest, light(0x8A8580), 0.5F), m_time.horizon, 0.15F);
        return mix(rock, Color{0.86F, 0.88F, 0.9F}, step(0, 0.03F, snow)) *
               std::clamp(0.75F + 9 * slope, 0.3F, 1.25F);
      }
      case Ground::Sand: {
        const float ripples =
            std::sin((y * 90 + 14 * fractal(x * 3, y * 7, 3, seed)) / (0.35F + range.nearness));
        const float side = fractal(x * 1.4F + below * 2, 5, 2, range.seed);
        return mix(light(0xD9A860), m_time.ground, 0.35F) *
               (0.7F + 0.07F * ripples + 0.4F * step(0.47F, 0.53F, side));
      }
      case Ground::Meadow:
        break;
    }
    const float field = fractal(x * scale * 0.12F, y * scale * 0.5F, 2, seed);
    Color color = mix(m_time.ground, m_time.forest, 0.75F * step(0.5F, 0.53F, field));
    color = mix(color, color * Color{1.5F, 1.2F, 0.7F}, step(0.62F, 0.64F, field));
    return color * (0.8F + 0.35F * fractal(x * scale * 2, y * scale * 5, 4, seed));
  }

  // What the water mirrors, in waves that grow towards the viewer, and the path of the sun on it.
  Color waterAt(float x, float y) const {
    const float depth = y - m_horizon;
    const float away = 1 / (depth + 0.03F);
    const float wave =
        fractal((x - 0.6F) * away * 3, away * (40 * depth + 4), 4, m_seed + 700) - 0.5F;
    const float mirrored = m_horizon - 0.95F * depth + wave * (0.01F + 0.22F * depth);
    const Color seen =
        at(x + wave * 0.05F * depth, std::clamp(mirrored, 0.0F, m_horizon - m_pixel));
    const float aside = (x - m_sunX) / (0.03F + 0.25F * depth);
    const float path = std::exp(-aside * aside) * step(0.04F, 0.16F, wave);
    return mix(seen * 0.9F, m_time.zenith * 0.35F, std::min(0.75F, 0.15F + 0.9F * depth)) +
           m_time.sun * (path * step(0.6F, 0.1F, m_time.sunHeight));
  }

  std::uint32_t m_seed;
  const Daytime& m_time;
  float m_pixel, m_horizon, m_sunX, m_lightSide, m_mist;
  bool m_water;
  std::vector<Range> m_ranges;
};

std::uint8_t exposed(float light, float grain) {
  const float value = std::sqrt(1.15F * light / (1 + 0.15F * light)) + grain;
  return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255));
}

}  // namespace

Image paintLandscape(std::uint32_t seed, int width, int height) {
  const Landscape landscape(seed, width, height);
  const float pixel = 1.0F / static_cast<float>(height);
  Image image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Color color = landscape.at((static_cast<float>(x) + 0.5F) * pixel,
                                       (static_cast<float>(y) + 0.5F) * pixel);
      const float grain = 0.02F * (hashed(x, y, seed) - 0.5F);
      std::uint8_t* channels = image.pixel(x, y);
      channels[0] = exposed(color.r, grain);
      channels[1] = exposed(color.g, grain);
      channels[2] = exposed(color.b, grain);
    }
  }
  return image;
}

}  // namespace snaplift::samples
