#include "pictures/Sky.h"

#include <cmath>
#include <vector>

namespace snaplift::samples {
namespace {

struct Palette {
  std::uint32_t zenith, middle, horizon, glow, sunlight, cloudLit, cloudShade;
  float sunStrength, ambientStrength;
  float sunUp;  // as a slope; lit from behind the camera where the sun is out of the picture
  bool sunInView;
};

Palette paletteOf(Daytime daytime) {
  switch (daytime) {
    case Daytime::Dawn:
      return {0x4F6FA8, 0xB79DBB, 0xF7CDB2, 0xFFC08A, 0xFFC9A0, 0xFFE3CF,
              0x9A8FB5, 1.6F,     0.75F,    0.07F,    true};
    case Daytime::Morning:
      return {0x2F68B0, 0x74A8DC, 0xCFE3F0, 0xFFF0D0, 0xFFEBCF, 0xFFFFFF,
              0xA9B7CC, 2.6F,     0.65F,    0.55F,    false};
    case Daytime::Noon:
      return {0x1F56A5, 0x5C98D8, 0xC4DEF0, 0xFFFFFF, 0xFFF8EA, 0xFFFFFF,
              0xB5C1D2, 2.9F,     0.7F,     1.1F,     false};
    case Daytime::Overcast:
      return {0x5B6874, 0x8C99A3, 0xC9CED0, 0xE5E5E0, 0xDDE0E0, 0xE3E6E8,
              0x76828D, 0.6F,     1.1F,     0.9F,     false};
    case Daytime::Golden:
      return {0x4670A8, 0x9FB2C4, 0xF6CF8E, 0xFFB257, 0xFFB868, 0xFFE0AE,
              0x8C8799, 2.8F,     0.5F,     0.13F,    true};
    case Daytime::Dusk:
      return {0x262C5C, 0x84507F, 0xF08C5A, 0xFF6F35, 0xFF8A4A, 0xFF9C78,
              0x4A3C68, 1.5F,     0.42F,    0.035F,   true};
    case Daytime::BlueHour:
      return {0x0C1A3E, 0x2A4B86, 0xB59A9C, 0xFFA56A, 0x9FB4E8, 0x8790B8,
              0x27335C, 0.25F,    0.42F,    -0.03F,   true};
    case Daytime::Night:
      break;
  }
  return {0x050A18, 0x0A1630, 0x1B2F52, 0x304468, 0xA8C0F0, 0x2A3A5A,
          0x0C1428, 0.3F,     0.5F,     0.5F,     false};
}

}  // namespace

Sky::Sky(Daytime daytime, float cloudCover, Random& random)
    : m_daytime(daytime), m_cloudCover(cloudCover), m_seed(random.bits()) {
  const Palette p = paletteOf(daytime);
  m_zenith = srgb(p.zenith);
  m_middle = srgb(p.middle);
  m_horizon = srgb(p.horizon);
  m_glow = srgb(p.glow);
  m_sunlight = srgb(p.sunlight) * p.sunStrength;
  m_cloudLit = srgb(p.cloudLit);
  m_cloudShade = srgb(p.cloudShade);
  m_ambient = mix(m_zenith, m_middle, 0.6F) * (1.6F * p.ambientStrength) +
              m_horizon * (0.15F * p.ambientStrength);
  m_sunInView = p.sunInView;
  m_sunRight = random.between(-0.33F, 0.33F);
  m_sunUp = p.sunUp * random.between(0.8F, 1.4F);
  const float right = m_sunInView ? m_sunRight : random.chance(0.5F) ? 0.9F : -0.9F;
  const float ahead = m_sunInView ? 1.0F : random.between(-0.5F, 0.35F);
  // The land is lit from a little higher than the sun stands, or all of it would lie in shadow.
  const float up = std::max(m_sunUp, 0.05F) + (m_sunInView ? 0.12F : 0.0F);
  const float length = std::sqrt(right * right + up * up + ahead * ahead);
  m_light[0] = right / length;
  m_light[1] = up / length;
  m_light[2] = ahead / length;
}

Color Sky::clearLight(float right, float up) const {
  const float e = std::max(up, 0.0F);
  Color light = mix(m_horizon, m_middle, smoothstep(0.0F, 0.22F, e));
  light = mix(light, m_zenith, smoothstep(0.08F, 0.75F, e));
  if (m_sunInView) {
    const float dx = right - m_sunRight, dy = up - m_sunUp;
    // The glow lies flat along the horizon.
    const float wide = std::sqrt(0.35F * dx * dx + 1.6F * dy * dy);
    const float near = std::sqrt(dx * dx + dy * dy);
    light += m_glow * (0.55F * std::exp(-5.5F * wide) + 0.7F * std::exp(-16 * near));
  }
  return light;
}

void Sky::paint(Canvas& canvas, const View& view) const {
  const int last = std::min(canvas.height() - 1, static_cast<int>(view.horizon) + 2);
  for (int y = 0; y < canvas.height(); ++y) {
    const float up = view.upAt(static_cast<float>(std::min(y, last)));
    for (int x = 0; x < canvas.width(); ++x) {
      const float right = view.rightAt(static_cast<float>(x));
      Color light = clearLight(right, up);
      const float dx = right - m_sunRight, dy = up - m_sunUp;
      if (m_sunInView && m_sunUp > 0) {
        light += m_sunlight * (6 * smoothstep(0.0215F, 0.0195F, std::sqrt(dx * dx + dy * dy)));
      }
      canvas.at(x, y) = light;
    }
  }
  if (m_daytime == Daytime::Night) {
    paintStars(canvas, view);
    paintMoon(canvas, view);
  }
  if (m_cloudCover > 0) {
    paintClouds(canvas, view);
  }
}

void Sky::paintClouds(Canvas& canvas, const View& view) const {
  // Clouds have no sharp edges: they are worked out for every second pixel each way.
  const int w = canvas.width() / 2 + 2, h = static_cast<int>(view.horizon) / 2 + 2;
  struct Cloud {
    float cover, light;
  };
  std::vector<Cloud> row(static_cast<std::size_t>(w)), above = row;
  const float threshold = mix(0.62F, 0.34F, m_cloudCover);
  const float towardsSun = m_sunInView ? m_sunRight : m_light[0];
  const auto cloudAt = [&](float right, float up) -> Cloud {
    const float distance = 1 / (up + 0.11F);
    const float px = right * distance * 1.1F + 40, pz = distance * 1.5F + 40;
    const float warp = noise(px * 0.7F, pz * 0.7F, m_seed + 90);
    const float density = fractalNoise(px + warp, pz + 0.6F * warp, 6, m_seed);
    const float cover =
        smoothstep(threshold, threshold + 0.2F, density) * smoothstep(0.005F, 0.09F, up);
    if (cover <= 0) {
      return {0, 0};
    }
    // Thin towards the light means lit.
    const float beyond =
        fractalNoise(px + warp + 0.35F * towardsSun, pz + 0.6F * warp + 0.25F, 4, m_seed);
    const float thick = smoothstep(threshold, threshold + 0.33F, density);
    return {cover * 0.94F, clamp01(0.95F - 0.75F * thick + 2.6F * (density - beyond))};
  };
  const auto pixelsOf = [&](int y, const std::vector<Cloud>& clouds, const std::vector<Cloud>& last,
                            float part) {
    const float up = view.upAt(static_cast<float>(y));
    for (int x = 0; x < canvas.width() && y < canvas.height(); ++x) {
      const auto i = static_cast<std::size_t>(x / 2);
      const float fx = x % 2 == 0 ? 0.0F : 0.5F;
      const float cover = mix(mix(last[i].cover, last[i + 1].cover, fx),
                              mix(clouds[i].cover, clouds[i + 1].cover, fx), part);
      if (cover > 0) {
        const float lit = mix(mix(last[i].light, last[i + 1].light, fx),
                              mix(clouds[i].light, clouds[i + 1].light, fx), part);
        const float right = view.rightAt(static_cast<float>(x));
        Color color = mix(m_cloudShade, m_cloudLit, lit);
        if (m_sunInView) {  // edges before the sun shine
          const float dx = right - m_sunRight, dy = up - m_sunUp;
          color += m_glow * (0.9F * lit * std::exp(-4 * std::sqrt(dx * dx + dy * dy)));
        }
        color = mix(clearLight(right, up), color, smoothstep(-0.05F, 0.2F, up));
        canvas.blend(x, y, color, cover);
      }
    }
  };
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      row[static_cast<std::size_t>(x)] =
          cloudAt(view.rightAt(2 * static_cast<float>(x)), view.upAt(2 * static_cast<float>(y)));
    }
    if (y > 0) {
      pixelsOf(2 * y - 2, row, above, 0);
      pixelsOf(2 * y - 1, row, above, 0.5F);
    }
    std::swap(row, above);
  }
}

void Sky::paintStars(Canvas& canvas, const View& view) const {
  Random random(m_seed + 1);
  const float pixel = static_cast<float>(std::max(canvas.width(), canvas.height())) / 2000;
  // A band of faint light across the sky, with dark lanes in it.
  const float tilt = random.between(-0.7F, 0.7F), offset = random.between(-0.1F, 0.2F);
  const auto bandAt = [&](float right, float up) {
    const float across = (up - 0.35F - offset - tilt * right) / std::sqrt(1 + tilt * tilt);
    const float wave = 0.06F * (noise(right * 4 + 9, up * 4 + 9, m_seed + 2) - 0.5F);
    return std::exp(-std::pow((across + wave) / 0.11F, 2.0F));
  };
  const int last = std::min(canvas.height(), static_cast<int>(view.horizon));
  for (int y = 0; y < last; ++y) {
    const float up = view.upAt(static_cast<float>(y));
    for (int x = 0; x < canvas.width(); ++x) {
      const float right = view.rightAt(static_cast<float>(x));
      const float band = bandAt(right, up);
      if (band > 0.01F) {
        const float dust = fractalNoise(right * 7 + 20, up * 7 + 20, 5, m_seed + 3);
        const float light = band * smoothstep(0.25F, 0.75F, dust) * smoothstep(0.0F, 0.2F, up);
        canvas.at(x, y) += Color{0.075F, 0.075F, 0.1F} * light +
                           Color{0.06F, 0.03F, 0.025F} * (light * light * band);
      }
    }
  }
  const int count = 2600;
  for (int i = 0; i < count; ++i) {
    const float x = random.unit() * static_cast<float>(canvas.width());
    const float y = random.unit() * static_cast<float>(last);
    const float up = view.upAt(y);
    const float magnitude = std::pow(random.unit(), 7.0F) + 0.035F;
    const float inBand = bandAt(view.rightAt(x), up);
    if (random.unit() > 0.55F + 0.45F * inBand) {
      continue;
    }
    const Color tint = mix(Color{0.75F, 0.85F, 1.0F}, Color{1.0F, 0.85F, 0.7F}, random.unit());
    const float seen = smoothstep(0.0F, 0.15F, up);
    canvas.addGlow(x, y, pixel * (1.6F + 2.2F * magnitude), tint * (seen * 3.2F * magnitude));
    if (magnitude > 0.6F) {
      canvas.addGlow(x, y, pixel * 16 * magnitude, tint * (0.1F * seen * magnitude));
    }
  }
}

void Sky::paintMoon(Canvas& canvas, const View& view) const {
  Random random(m_seed + 5);
  if (!random.chance(0.5F)) {
    return;
  }
  const float x = view.xOf(m_sunRight), y = view.yOf(random.between(0.28F, 0.45F));
  const float radius = 0.017F * view.focal;
  canvas.addGlow(x, y, radius * 16, Color{0.10F, 0.12F, 0.17F});
  canvas.addGlow(x, y, radius * 4, Color{0.2F, 0.22F, 0.26F});
  canvas.fillCircle(x, y, radius, Color{1.6F, 1.55F, 1.4F});
  for (int i = 0; i < 7; ++i) {  // the seas
    const float angle = random.between(0, 6.28F), distance = radius * random.between(0.1F, 0.6F);
    canvas.fillCircle(x + distance * std::cos(angle), y + distance * std::sin(angle),
                      radius * random.between(0.12F, 0.32F), Color{1.0F, 1.0F, 0.95F}, 0.5F);
  }
}

}  // namespace snaplift::samples
