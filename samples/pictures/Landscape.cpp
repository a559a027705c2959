#include "pictures/Landscape.h"

#include <cmath>

namespace snaplift::samples {
namespace {

constexpr float nearest = 3, farthest = 760;
constexpr float mistHeight = 5;

// The grid of the shadows: from the camera to the farthest ground and as far to either side as the
// camera sees.
constexpr int cellsAcross = 360, cellsAhead = 300;
constexpr float cellSize = farthest / cellsAhead;

std::size_t cellIndex(int across, int ahead) {
  return static_cast<std::size_t>(std::clamp(ahead, 0, cellsAhead - 1)) * cellsAcross +
         static_cast<std::size_t>(std::clamp(across, 0, cellsAcross - 1));
}

}  // namespace

// One column of pixels on its way from near to far.
struct Landscape::Column {
  Column(float slope, std::size_t rows, Color fog)
      : right(slope),
        haze(fog),
        light(rows),
        covered(rows),
        water(rows),
        top(static_cast<float>(rows)) {}

  // Fills the rows from `to` down to the lowest row that is still open.
  void rise(float to, Color above, Color below, bool isWater) {
    const float length = top - to;
    for (int row = std::max(0, floorOf(to)); static_cast<float>(row) < top; ++row) {
      const auto y = static_cast<float>(row);
      const float part = std::min(y + 1, top) - std::max(y, to);
      const auto i = static_cast<std::size_t>(row);
      covered[i] += part;
      if (isWater) {
        water[i] += part;
      } else {
        light[i] += mix(above, below, clamp01((y + 0.5F - to) / length)) * part;
      }
    }
    top = std::max(to, 0.0F);
  }

  float right;
  Color haze;
  std::vector<Color> light;
  std::vector<float> covered, water;
  float top;
};

Landscape::Landscape(const Relief& relief, const Sky& sky, const View& view, float eyeHeight,
                     const Air& air, std::optional<float> waterLevel)
    : m_relief(relief), m_sky(sky), m_view(view), m_air(air), m_water(waterLevel) {
  float ground = groundLevel(relief.at(0, 0, 1).height);
  for (const float z : {4.0F, 8.0F, 14.0F, 22.0F}) {
    ground = std::max(ground, groundLevel(relief.at(0, z, 1).height));
  }
  m_eye = ground + eyeHeight;
  castShadows();
}

void Landscape::castShadows() {
  std::vector<float> heights(std::size_t{cellsAcross} * cellsAhead);
  for (int ahead = 0; ahead < cellsAhead; ++ahead) {
    for (int across = 0; across < cellsAcross; ++across) {
      const float x = (static_cast<float>(across) - cellsAcross / 2.0F) * cellSize;
      const float z = static_cast<float>(ahead) * cellSize;
      heights[cellIndex(across, ahead)] = groundLevel(m_relief.at(x, z, cellSize).height);
    }
  }
  const float level = std::hypot(m_sky.lightRight(), m_sky.lightAhead());
  const float stepX = m_sky.lightRight() / level, stepZ = m_sky.lightAhead() / level;
  const float climb = m_sky.lightUp() / level * cellSize;
  m_shadows.resize(heights.size());
  for (int ahead = 0; ahead < cellsAhead; ++ahead) {
    for (int across = 0; across < cellsAcross; ++across) {
      float shadow = -1e6F;
      for (int step = 2; step < 70; ++step) {
        const auto s = static_cast<float>(step);
        const int x = floorOf(static_cast<float>(across) + s * stepX + 0.5F);
        const int z = floorOf(static_cast<float>(ahead) + s * stepZ + 0.5F);
        shadow = std::max(shadow, heights[cellIndex(x, z)] - s * climb);
      }
      m_shadows[cellIndex(across, ahead)] = shadow;
    }
  }
}

float Landscape::litAt(float x, float z, float height) const {
  const float across = x / cellSize + cellsAcross / 2.0F, ahead = z / cellSize;
  const int ix = floorOf(across), iz = floorOf(ahead);
  const float fx = across - static_cast<float>(ix), fz = ahead - static_cast<float>(iz);
  const float shadow =
      mix(mix(m_shadows[cellIndex(ix, iz)], m_shadows[cellIndex(ix + 1, iz)], fx),
          mix(m_shadows[cellIndex(ix, iz + 1)], m_shadows[cellIndex(ix + 1, iz + 1)], fx), fz);
  return smoothstep(shadow - 1.5F, shadow + 2.5F, height);
}

Color Landscape::lightFrom(const Ground& ground, const Column& column, float distance) const {
  const float x = column.right * distance;
  const float length = std::sqrt(1 + ground.slopeX * ground.slopeX + ground.slopeZ * ground.slopeZ);
  const float facing =
      (m_sky.lightUp() - ground.slopeX * m_sky.lightRight() - ground.slopeZ * m_sky.lightAhead()) /
      length;
  const float direct = std::max(facing, 0.0F) * litAt(x, distance, ground.height);
  const Color light = m_sky.sunlight() * direct + m_sky.ambient() * (0.55F + 0.45F / length);
  const Color color = m_relief.colorAt(x, distance, ground) * light;
  float clear = std::exp(-distance / m_air.visibility);
  if (m_air.mist > 0) {
    const float low =
        std::exp(-std::max(ground.height - (m_water ? *m_water : 0.0F), 0.0F) / mistHeight);
    const float patch = 0.4F + 1.2F * noise(x / 60, distance / 60, 77);
    clear *= std::exp(-m_air.mist * patch * low * smoothstep(10, 160, distance) * distance / 90);
  }
  return mix(column.haze, color, clear);
}

void Landscape::walk(Column& column) const {
  const float pixel = 1 / m_view.focal;
  Color below;
  bool seen = false;
  for (float distance = nearest; distance < farthest && column.top > 0;) {
    // A step is halved while it would raise the ground by more rows than one colour may fill.
    float step = std::max(0.12F, 0.006F * distance);
    Ground ground;
    float next, row;
    for (int halving = 0;; ++halving, step *= 0.5F) {
      next = distance + step;
      ground = m_relief.at(column.right * next, next, 1.5F * pixel * next);
      row = m_view.yOf((groundLevel(ground.height) - m_eye) / next);
      if (halving == 4 || row > column.top - 2.5F) {
        break;
      }
    }
    distance = next;
    if (row >= column.top) {
      seen = false;
      continue;
    }
    const bool isWater = m_water && ground.height < *m_water;
    const Color above = isWater ? Color{} : lightFrom(ground, column, distance);
    column.rise(row, above, seen ? below : above, isWater);
    below = above;
    seen = !isWater;
  }
}

void Landscape::paint(Canvas& canvas) const {
  const auto rows = static_cast<std::size_t>(canvas.height());
  std::vector<float> water(m_water ? rows * static_cast<std::size_t>(canvas.width()) : 0);
  for (int x = 0; x < canvas.width(); ++x) {
    const float right = m_view.rightAt(static_cast<float>(x) + 0.5F);
    Column column(right, rows, m_sky.haze(right));
    walk(column);
    if (m_water) {  // water reaches the horizon
      const float horizon = m_view.horizon;
      if (column.top > horizon) {
        column.rise(horizon, {}, {}, true);
      }
    }
    for (std::size_t y = 0; y < rows; ++y) {
      Color& pixel = canvas.at(x, static_cast<int>(y));
      pixel = column.light[y] + pixel * (1 - std::min(column.covered[y], 1.0F));
      if (m_water) {
        water[y * static_cast<std::size_t>(canvas.width()) + static_cast<std::size_t>(x)] =
            column.water[y];
      }
    }
  }
  if (m_water) {
    addWater(canvas, water);
  }
}

void Landscape::addWater(Canvas& canvas, const std::vector<float>& covered) const {
  const float above = m_eye - *m_water;
  const Color depth = mix(m_sky.ambient(), Color{0.02F, 0.10F, 0.11F}, 0.5F) * 0.16F;
  const auto reflected = [&](float right, float up) {
    const float y = m_view.yOf(std::max(up, 0.002F));
    return y < 0 ? m_sky.clearLight(right, up) : canvas.sample(m_view.xOf(right), y);
  };
  for (int y = std::max(0, static_cast<int>(m_view.horizon)); y < canvas.height(); ++y) {
    const float down = std::max(-m_view.upAt(static_cast<float>(y) + 0.5F), 1e-4F);
    const float distance = above / down;
    const float mirror = 0.03F + 0.97F * std::pow(1 - down / std::sqrt(1 + down * down), 5.0F);
    for (int x = 0; x < canvas.width(); ++x) {
      const float part =
          covered[static_cast<std::size_t>(y) * static_cast<std::size_t>(canvas.width()) +
                  static_cast<std::size_t>(x)];
      if (part <= 0) {
        continue;
      }
      const float right = m_view.rightAt(static_cast<float>(x) + 0.5F);
      const float wx = right * distance, wz = distance;
      const float calm = 0.35F + 0.65F * noise(wx / 30, wz / 55, 5);
      const float wave = (fractalNoise(wx * 0.9F, wz * 1.6F, 3, 6) - 0.5F) * 0.075F * calm;
      const float spread = 0.016F * calm;
      Color light;
      for (const float offset : {-spread, 0.0F, 1.6F * spread}) {
        light += reflected(right + 0.25F * wave, down + wave + offset) * (1 / 3.0F);
      }
      light = mix(depth, light, mirror * 0.94F);
      light = mix(m_sky.haze(right), light, std::exp(-distance / (2.5F * m_air.visibility)));
      canvas.at(x, y) += light * std::min(part, 1.0F);
    }
  }
}

}  // namespace snaplift::samples
