#include "pictures/Scene.h"

#include <array>
#include <optional>

#include "pictures/Landscape.h"

namespace snaplift::samples {
namespace {

struct SceneKind {
  ReliefKind relief;
  std::array<Daytime, 4> daytimes;  // those that flatter it
  std::optional<float> waterLevel;
};

constexpr std::array<SceneKind, 6> sceneKinds = {{
    {ReliefKind::Fjord, {Daytime::Dawn, Daytime::Golden, Daytime::BlueHour, Daytime::Noon}, 0.0F},
    {ReliefKind::Alps, {Daytime::Morning, Daytime::Golden, Daytime::Noon, Daytime::Dusk}, {}},
    {ReliefKind::Dunes, {Daytime::Golden, Daytime::Dusk, Daytime::Noon, Daytime::Night}, {}},
    {ReliefKind::Hills, {Daytime::Dawn, Daytime::Overcast, Daytime::Golden, Daytime::Morning}, {}},
    {ReliefKind::Snowfield, {Daytime::BlueHour, Daytime::Noon, Daytime::Night, Daytime::Dawn}, {}},
    {ReliefKind::Canyon, {Daytime::Golden, Daytime::Noon, Daytime::Dusk, Daytime::Morning}, {}},
}};

// The palette of the charts.
constexpr std::array<std::uint32_t, 5> chartColors = {0x2F7EDB, 0xF2994A, 0x27AE60, 0xEB5757,
                                                      0x9B51E0};

// What the charts share: the canvas, its unit of length, and the random numbers.
struct Chart {
  Canvas& canvas;
  Random& random;
  float left, top, right, bottom;

  Color color(int i) const { return srgb(chartColors[static_cast<std::size_t>(i) % 5]); }

  void card() const {
    canvas.fillRoundedRectangle(left - 12, top - 12, right + 12, bottom + 12, 14, srgb(0xFFFFFF));
    for (int line = 0; line <= 4; ++line) {
      const float y = top + (bottom - top) * static_cast<float>(line) / 4;
      canvas.drawLine(left, y, right, y, 1, srgb(0xE3E6EA));
    }
  }

  void bars() const {
    card();
    constexpr int count = 7;
    const float step = (right - left) / count;
    for (int i = 0; i < count; ++i) {
      const float x = left + step * (static_cast<float>(i) + 0.2F);
      const float y = mix(bottom, top, random.between(0.2F, 0.95F));
      canvas.fillRoundedRectangle(x, y, x + 0.6F * step, bottom, 4, color(i == 4 ? 1 : 0));
    }
  }

  void curves() const {
    card();
    for (int curve = 0; curve < 3; ++curve) {
      const auto seed = random.bits();
      const auto heightAt = [&](int i) {
        return mix(bottom, top, 0.1F + 0.8F * fractalNoise(static_cast<float>(i) / 9, 0, 3, seed));
      };
      constexpr int segments = 48;
      const float step = (right - left) / segments;
      for (int i = 0; i < segments; ++i) {
        const float x = left + step * static_cast<float>(i);
        canvas.drawLine(x, heightAt(i), x + step, heightAt(i + 1), 3, color(curve));
      }
    }
  }

  void ring() const {
    canvas.fillRoundedRectangle(left - 12, top - 12, right + 12, bottom + 12, 14, srgb(0xFFFFFF));
    const float radius = 0.46F * std::min(right - left, bottom - top);
    float from = 0;
    for (int i = 0; i < 5; ++i) {
      const float to = i == 4 ? 1.0F : from + (1 - from) * random.between(0.2F, 0.5F);
      canvas.fillSector((left + right) / 2, (top + bottom) / 2, 0.58F * radius, radius, from,
                        to - 0.006F, color(i));
      from = to;
    }
  }
};

// Painting takes time in the number of pixels, so the light is painted at half the size of the
// photograph; the grain of the sensor comes after the enlarging and hides the softness.
constexpr int paintedScale = 2;

Canvas enlarged(const Canvas& canvas, int width, int height) {
  Canvas large(width, height);
  const float scale = 1.0F / paintedScale;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      large.at(x, y) = canvas.sample((static_cast<float>(x) + 0.5F) * scale,
                                     (static_cast<float>(y) + 0.5F) * scale);
    }
  }
  return large;
}

}  // namespace

Image paintLandscape(std::uint32_t seed, int width, int height) {
  Random random(seed);
  const SceneKind& kind = sceneKinds[seed % sceneKinds.size()];
  const Daytime daytime = kind.daytimes[static_cast<std::size_t>(random.below(4))];
  Canvas canvas((width + 1) / paintedScale, (height + 1) / paintedScale);
  const View view(canvas, random.between(0.42F, 0.56F));
  const Sky sky(daytime, random.between(0.1F, 0.7F), random);
  sky.paint(canvas, view);
  const auto relief = Relief::make(kind.relief, random.bits());
  const Landscape::Air air{.visibility = random.between(500, 1100),
                           .mist = random.chance(0.4F) ? random.between(0.3F, 1) : 0};
  const Landscape landscape(*relief, sky, view, random.between(1.2F, 4), air, kind.waterLevel);
  landscape.paint(canvas);
  return developed(enlarged(canvas, width, height), {.seed = random.bits()});
}

Image paintCharts(std::uint32_t seed, int width, int height) {
  Random random(seed);
  Canvas canvas(width, height);
  const auto w = static_cast<float>(width);
  const auto h = static_cast<float>(height);
  canvas.fillRectangle(0, 0, w, h, srgb(0xF1F3F6));
  canvas.fillRectangle(0, 0, w, 0.09F * h, srgb(chartColors[seed % chartColors.size()]));
  canvas.fillRoundedRectangle(0.05F * w, 0.04F * h, 0.45F * w, 0.065F * h, 6, srgb(0xFFFFFF), 0.9F);
  const float margin = 0.07F * w;
  const auto cell = [&](float from, float to) {
    return Chart{canvas, random, margin, from * h, w - margin, to * h};
  };
  cell(0.13F, 0.37F).bars();
  cell(0.43F, 0.67F).curves();
  cell(0.73F, 0.96F).ring();
  return rendered(canvas);
}

}  // namespace snaplift::samples
