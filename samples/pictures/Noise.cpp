#include "pictures/Noise.h"

namespace snaplift::samples {

float fractalNoise(float x, float y, int octaves, std::uint32_t seed) {
  float sum = 0, weight = 0.5F;
  for (int octave = 0; octave < octaves; ++octave) {
    sum += weight * noise(x, y, seed + static_cast<std::uint32_t>(octave));
    weight *= 0.5F;
    // Turned as well as doubled: otherwise the lattice of all layers shows as a grid.
    const float turned = 1.6F * x - 1.2F * y;
    y = 1.2F * x + 1.6F * y;
    x = turned;
  }
  return sum / (1 - 2 * weight);
}

}  // namespace snaplift::samples
