#pragma once

#include <cstdint>

namespace snaplift::samples {

// Everything that looks random in a picture comes from here, so that a seed always paints the same
// picture: the distributions of the standard library differ between implementations.

// Well-mixed bits of a lattice point.
inline std::uint32_t hashOf(std::int32_t x, std::int32_t y, std::uint32_t seed) {
  std::uint32_t h = static_cast<std::uint32_t>(x) * 0x9E3779B1U +
                    static_cast<std::uint32_t>(y) * 0x85EBCA77U + seed * 0xC2B2AE3DU;
  h = (h ^ h >> 15) * 0x2C1B3C6DU;
  h = (h ^ h >> 13) * 0x297A2D39U;
  return h ^ h >> 16;
}

// The top 24 bits of a hash as a number from 0 up to 1.
inline float unitOf(std::uint32_t hash) {
  return static_cast<float>(hash >> 8) * (1.0F / 16777216);
}

// A sequence of numbers for one seed.
class Random {
public:
  explicit Random(std::uint32_t seed) : m_seed(seed) {}

  std::uint32_t bits() { return hashOf(static_cast<std::int32_t>(m_count++), 7919, m_seed); }
  float unit() { return unitOf(bits()); }
  float between(float low, float high) { return low + (high - low) * unit(); }
  int below(int bound) { return static_cast<int>(unit() * static_cast<float>(bound)); }
  bool chance(float probability) { return unit() < probability; }

private:
  std::uint32_t m_seed;
  std::uint32_t m_count = 0;
};

// A value and its slope along x and y.
struct Slope {
  float value, dx, dy;
};

inline int floorOf(float value) {
  const int whole = static_cast<int>(value);
  return whole - (value < static_cast<float>(whole) ? 1 : 0);
}

// Smooth noise from 0 to 1 with one free value at each lattice point, and its slope.
inline Slope noiseSlope(float x, float y, std::uint32_t seed) {
  const int ix = floorOf(x), iy = floorOf(y);
  const float fx = x - static_cast<float>(ix), fy = y - static_cast<float>(iy);
  const float u = fx * fx * fx * (fx * (fx * 6 - 15) + 10);
  const float v = fy * fy * fy * (fy * (fy * 6 - 15) + 10);
  const float du = 30 * fx * fx * (fx * (fx - 2) + 1);
  const float dv = 30 * fy * fy * (fy * (fy - 2) + 1);
  const float a = unitOf(hashOf(ix, iy, seed)), b = unitOf(hashOf(ix + 1, iy, seed));
  const float c = unitOf(hashOf(ix, iy + 1, seed)), d = unitOf(hashOf(ix + 1, iy + 1, seed));
  const float k = a - b - c + d;
  return {a + (b - a) * u + (c - a) * v + k * u * v, du * (b - a + k * v), dv * (c - a + k * u)};
}

inline float noise(float x, float y, std::uint32_t seed) {
  return noiseSlope(x, y, seed).value;
}

// `octaves` layers of noise, each of half the size and strength of the one before; about 0 to 1.
float fractalNoise(float x, float y, int octaves, std::uint32_t seed);

}  // namespace snaplift::samples
