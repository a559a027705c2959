#include "pictures/Relief.h"

#include <array>
#include <cmath>

#include "pictures/Noise.h"

namespace snaplift::samples {
namespace {

// How one octave of noise lies over the ground: turned against the one before, and half its size.
struct Octave {
  float cosine, sine, frequency;
};

constexpr std::size_t octaveCount = 12;

const std::array<Octave, octaveCount> octaves = [] {
  std::array<Octave, octaveCount> table{};
  for (std::size_t i = 0; i < octaveCount; ++i) {
    const float angle = 0.6435F * static_cast<float>(i);
    table[i] = {std::cos(angle), std::sin(angle), std::ldexp(1.0F, static_cast<int>(i))};
  }
  return table;
}();

// Octaves of noise down to features of `detail`; `worn` weakens small features on steep ground, as
// water does, which leaves ridges between smooth valleys.
Ground summedNoise(float x, float z, float wavelength, float detail, float worn, std::uint32_t seed,
                   std::size_t most = octaveCount) {
  Ground sum;
  float steepX = 0, steepZ = 0, weight = 0.5F;
  for (std::size_t i = 0; i < most; ++i) {
    const Octave& o = octaves[i];
    const float scale = o.frequency / wavelength;
    if (i > 2 && 1 / scale < detail) {
      break;
    }
    const Slope n =
        noiseSlope((o.cosine * x - o.sine * z) * scale, (o.sine * x + o.cosine * z) * scale,
                   seed + static_cast<std::uint32_t>(i));
    const float dx = o.cosine * n.dx + o.sine * n.dy, dz = o.cosine * n.dy - o.sine * n.dx;
    steepX += dx;
    steepZ += dz;
    const float part = weight / (1 + worn * (steepX * steepX + steepZ * steepZ));
    sum.height += part * n.value;
    sum.slopeX += part * scale * dx;
    sum.slopeZ += part * scale * dz;
    weight *= 0.5F;
  }
  return sum;
}

// Puts conifers on the ground: cones that stand in a jittered lattice.
void plantConifers(Ground& ground, float x, float z, float spacing, float tallest,
                   std::uint32_t seed) {
  const float cx = x / spacing - 0.5F, cz = z / spacing - 0.5F;
  const int ix = floorOf(cx), iz = floorOf(cz);
  for (int k = 0; k < 4; ++k) {
    const int tx = ix + (k & 1), tz = iz + (k >> 1);
    const std::uint32_t hash = hashOf(tx, tz, seed);
    const float jitterX = static_cast<float>(hash & 0xFF) / 255 - 0.5F;
    const float jitterZ = static_cast<float>(hash >> 8 & 0xFF) / 255 - 0.5F;
    const float size = 0.55F + 0.45F * static_cast<float>(hash >> 16 & 0xFF) / 255;
    const float dx = cx - static_cast<float>(tx) - 0.5F * jitterX;
    const float dz = cz - static_cast<float>(tz) - 0.5F * jitterZ;
    const float radius = 0.62F * size;
    const float distance = std::sqrt(dx * dx + dz * dz) + 1e-4F;
    const float tip = 1 - distance / radius;
    if (tip > ground.tree) {
      ground.tree = tip;
      const float steep = tallest * size / (radius * spacing * distance);
      ground.slopeX = -dx * steep;
      ground.slopeZ = -dz * steep;
    }
  }
  ground.height += tallest * 0.8F * ground.tree;
}

float steepness(const Ground& ground) {
  return std::sqrt(ground.slopeX * ground.slopeX + ground.slopeZ * ground.slopeZ);
}

// Mountains that rise with the distance from the camera, with rock, scree, snow and forest.
class Mountains : public Relief {
public:
  struct Look {
    float amplitude, snowLine, treeLine, shore;  // heights; the shore lies at 0
    float wavelength;
    std::uint32_t grass, rock;
  };

  Mountains(const Look& look, std::uint32_t seed) : m_look(look), m_seed(seed) {
    Random random(seed);
    m_valley = random.between(-0.25F, 0.25F);
  }

  Ground at(float x, float z, float detail) const override {
    Ground ground = summedNoise(x, z, m_look.wavelength, detail, 1.0F, m_seed);
    // The floor of the valley before the camera is low, and so is the water in it.
    const float aside = std::abs(x - m_valley * z) / (30 + 0.35F * z);
    const float rise =
        smoothstep(40, 330, z + 60 * aside) * (0.35F + 0.65F * smoothstep(0, 1.3F, aside));
    const float gain = m_look.amplitude * (0.10F + 0.9F * rise);
    ground.height = ground.height * gain - m_look.shore;
    ground.slopeX *= gain;
    ground.slopeZ *= gain;
    if (ground.height > 0.4F && ground.height < m_look.treeLine && detail < 0.9F &&
        steepness(ground) < 1.1F && forestAt(x, z, ground.height) > 0.5F) {
      plantConifers(ground, x, z, 0.95F, 2.2F, m_seed + 50);
    }
    return ground;
  }

  Color colorAt(float x, float z, const Ground& ground) const override {
    if (ground.tree > 0.04F) {
      const float tint = noise(x * 0.9F, z * 0.9F, m_seed + 51);
      return mix(srgb(0x1C2E1E), srgb(0x3C5230), tint) * (0.45F + 0.9F * ground.tree);
    }
    const float rough = fractalNoise(x * 0.33F, z * 0.33F, 4, m_seed + 60);
    const float steep = steepness(ground), level = 1 / std::sqrt(1 + steep * steep);
    const float strata = noise(x * 0.02F, ground.height * 0.5F + rough * 3, m_seed + 61);
    Color color = mix(srgb(m_look.rock), srgb(0x9A948C), 0.7F * rough + 0.4F * strata - 0.15F);
    const float green = smoothstep(0.66F, 0.86F, level + 0.22F * (rough - 0.5F)) *
                        smoothstep(m_look.treeLine * 1.7F, m_look.treeLine * 0.8F,
                                   ground.height + 14 * (rough - 0.5F));
    color = mix(color, mix(srgb(m_look.grass), srgb(0x7D7F45), rough), green);
    if (forestAt(x, z, ground.height) > 0.5F && steep < 1.1F && ground.height > 0.4F) {
      color = mix(color, srgb(0x24351F) * (0.6F + 0.8F * rough), 0.85F);
    }
    color =
        mix(srgb(0xA39A86) * (0.7F + 0.5F * rough), color, smoothstep(0.0F, 0.9F, ground.height));
    const float snow =
        smoothstep(m_look.snowLine - 8, m_look.snowLine + 12, ground.height + 30 * (rough - 0.5F)) *
        smoothstep(0.50F, 0.68F, level + 0.15F * (rough - 0.5F));
    return mix(color, srgb(0xF3F7FC), snow);
  }

private:
  float forestAt(float x, float z, float height) const {
    const float wood = fractalNoise(x * 0.021F + 7, z * 0.021F + 7, 3, m_seed + 70);
    return wood + 0.18F * smoothstep(m_look.treeLine, m_look.treeLine * 0.3F, height) -
           0.6F * smoothstep(m_look.treeLine * 0.75F, m_look.treeLine, height);
  }

  Look m_look;
  std::uint32_t m_seed;
  float m_valley;
};

// Rounded hills with fields, hedges and woods.
class Hills : public Relief {
public:
  explicit Hills(std::uint32_t seed) : m_seed(seed) {}

  Ground at(float x, float z, float detail) const override {
    Ground ground = summedNoise(x, z, 190, detail, 0.25F, m_seed, 5);
    const float gain = 55 * (0.12F + 0.88F * smoothstep(10, 220, z));
    ground.height = ground.height * gain;
    ground.slopeX *= gain;
    ground.slopeZ *= gain;
    if (detail < 0.9F && woodAt(x, z) > 0) {
      plantTrees(ground, x, z);
    }
    return ground;
  }

  Color colorAt(float x, float z, const Ground& ground) const override {
    const float tint = noise(x * 0.7F, z * 0.7F, m_seed + 41);
    if (ground.tree > 0.03F || woodAt(x, z) > 0) {
      return mix(srgb(0x26401D), srgb(0x5A6B2C), tint) * (0.5F + 0.8F * ground.tree);
    }
    const Field field = fieldAt(x, z);
    static const std::array<Color, 6> crops = {srgb(0x5F8A33), srgb(0x86A444), srgb(0x4B7A30),
                                               srgb(0xC9B25A), srgb(0xA8BD4E), srgb(0x8A6B45)};
    const Color color = crops[field.number % crops.size()];
    const float rows = std::sin(6.28F * (x * field.alongX + z * field.alongZ));
    const float near = smoothstep(120, 20, z);
    return color * (0.82F + 0.3F * tint + 0.08F * near * rows);
  }

private:
  struct Field {
    std::uint32_t number;
    float edge;  // 0 at the hedge
    float alongX, alongZ;
  };

  // The fields are the cells of scattered points, stretched sideways as the eye sees them.
  Field fieldAt(float x, float z) const {
    const float cx = x / 34, cz = z / 26;
    const int ix = floorOf(cx), iz = floorOf(cz);
    float nearest = 9, second = 9;
    std::uint32_t number = 0;
    for (int k = 0; k < 9; ++k) {
      const int tx = ix + k % 3 - 1, tz = iz + k / 3 - 1;
      const std::uint32_t hash = hashOf(tx, tz, m_seed + 40);
      const float dx = static_cast<float>(tx) + static_cast<float>(hash & 0xFF) / 255 - cx;
      const float dz = static_cast<float>(tz) + static_cast<float>(hash >> 8 & 0xFF) / 255 - cz;
      const float distance = std::sqrt(dx * dx + dz * dz);
      if (distance < nearest) {
        second = nearest;
        nearest = distance;
        number = hash >> 16;
      } else {
        second = std::min(second, distance);
      }
    }
    const float angle = static_cast<float>(number & 63) / 10;
    return {number, second - nearest, std::cos(angle), std::sin(angle)};
  }

  float woodAt(float x, float z) const {
    const float wood = fractalNoise(x * 0.02F + 3, z * 0.02F + 3, 3, m_seed + 42) - 0.6F;
    return wood > 0 ? wood : 0.03F - fieldAt(x, z).edge;
  }

  void plantTrees(Ground& ground, float x, float z) const {
    plantConifers(ground, x, z, 1.3F, 1.5F, m_seed + 43);
    ground.tree = std::sqrt(ground.tree);  // crowns are round
    ground.slopeX *= 0.6F;
    ground.slopeZ *= 0.6F;
  }

  std::uint32_t m_seed;
};

// A relief that is known by its height alone; the slopes are measured.
class MeasuredRelief : public Relief {
public:
  Ground at(float x, float z, float detail) const final {
    const float step = std::max(0.03F, 0.5F * detail);
    Ground ground;
    ground.height = heightAt(x, z, detail);
    ground.slopeX = (heightAt(x + step, z, detail) - ground.height) / step;
    ground.slopeZ = (heightAt(x, z + step, detail) - ground.height) / step;
    return ground;
  }

protected:
  virtual float heightAt(float x, float z, float detail) const = 0;
};

// Dunes: long backs that rise slowly against the wind and fall steeply behind a sharp crest.
class Dunes : public MeasuredRelief {
public:
  explicit Dunes(std::uint32_t seed) : m_seed(seed) {
    Random random(seed);
    m_angle = random.between(-0.5F, 0.5F) + (random.chance(0.5F) ? 0.9F : -0.9F);
  }

  Color colorAt(float x, float z, const Ground&) const override {
    const float grain = fractalNoise(x * 0.15F, z * 0.15F, 3, m_seed + 31);
    return mix(srgb(0xC98A4B), srgb(0xE2AE72), grain);
  }

protected:
  float heightAt(float x, float z, float detail) const override {
    const float across = x * std::cos(m_angle) + z * std::sin(m_angle);
    const float along = z * std::cos(m_angle) - x * std::sin(m_angle);
    const float bend = fractalNoise(x / 150 + 5, z / 150 + 5, 2, m_seed);
    const float big = ridge(across / 95 + 2.6F * bend, 0.7F);
    const float strength = 0.25F + 0.9F * noise(along / 170 + 9, across / 140 + 9, m_seed + 1);
    const float small =
        ridge(across / 23 + 1.9F * bend + 0.8F * noise(x / 40, z / 40, m_seed + 2), 0.65F);
    float height = 26 * strength * big * smoothstep(0, 90, z) + 2.4F * small * (1 - 0.7F * big);
    if (detail < 0.12F) {
      const float waves = std::sin(across * 6.5F + 9 * noise(x * 0.21F, z * 0.21F, m_seed + 3));
      height += 0.035F * smoothstep(0.12F, 0.02F, detail) * waves;
    }
    return height;
  }

private:
  static float ridge(float phase, float crest) {
    const float t = phase - std::floor(phase);
    return t < crest ? std::pow(t / crest, 1.6F)
                     : 1 - smoothstep(0, 1, (t - crest) / (1 - crest) * 0.5F + 0.0F) * 2;
  }

  std::uint32_t m_seed;
  float m_angle;
};

// Table mountains of layered red rock above a sandy plain.
class Canyon : public MeasuredRelief {
public:
  explicit Canyon(std::uint32_t seed) : m_seed(seed) {}

  Color colorAt(float x, float z, const Ground& ground) const override {
    const float rough = fractalNoise(x * 0.25F, z * 0.25F, 4, m_seed + 21);
    const float layer = ground.height * 0.55F + 1.6F * rough + 0.02F * x;
    const float band = noise(layer, 0.5F, m_seed + 22);
    const float fine = noise(layer * 4, 0.5F, m_seed + 23);
    Color rock = mix(srgb(0x7E3B25), srgb(0xD08A58), smoothstep(0.2F, 0.8F, band));
    rock = mix(rock, srgb(0xE8C9A0), 0.45F * smoothstep(0.6F, 0.9F, fine));
    const float steep = steepness(ground);
    const Color floor = mix(srgb(0xB5703F), srgb(0xD9A06A), rough);
    const Color plants = srgb(0x5E6B3A);
    const float bush = smoothstep(0.58F, 0.68F, noise(x * 1.7F, z * 1.7F, m_seed + 24)) *
                       smoothstep(0.4F, 0.7F, rough);
    return mix(mix(floor, plants, 0.75F * bush), rock, smoothstep(0.25F, 0.7F, steep));
  }

protected:
  float heightAt(float x, float z, float detail) const override {
    const Ground shape = summedNoise(x, z, 210, detail, 0.3F, m_seed, 8);
    const float rise = smoothstep(30, 260, z);
    const float level = clamp01((shape.height - 0.36F) * 3.4F) * (0.25F + 0.75F * rise);
    const float steps = level * 4;
    const float step = std::floor(steps);
    const float edge = smoothstep(0.55F, 0.8F, steps - step) * 0.85F + 0.15F * (steps - step);
    return 19 * (step + edge) + 6 * shape.height;
  }

private:
  std::uint32_t m_seed;
};

}  // namespace

std::unique_ptr<Relief> Relief::make(ReliefKind kind, std::uint32_t seed) {
  switch (kind) {
    case ReliefKind::Alps:
      return std::make_unique<Mountains>(Mountains::Look{150, 62, 30, 4, 230, 0x55692E, 0x5E5850},
                                         seed);
    case ReliefKind::Fjord:
      return std::make_unique<Mountains>(Mountains::Look{105, 70, 26, 9, 200, 0x4A6A30, 0x55524D},
                                         seed);
    case ReliefKind::Snowfield:
      return std::make_unique<Mountains>(Mountains::Look{95, -20, 9, 3, 210, 0x55692E, 0x4E5058},
                                         seed);
    case ReliefKind::Hills:
      return std::make_unique<Hills>(seed);
    case ReliefKind::Dunes:
      return std::make_unique<Dunes>(seed);
    case ReliefKind::Canyon:
      return std::make_unique<Canyon>(seed);
  }
  return nullptr;
}

}  // namespace snaplift::samples
