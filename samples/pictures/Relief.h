#pragma once

#include <cstdint>
#include <memory>

#include "pictures/Color.h"

namespace snaplift::samples {

// A place of a landscape. Lengths are units of about ten metres; the camera stands at x = 0, z = 0
// and looks along z.
struct Ground {
  float height = 0;
  float slopeX = 0, slopeZ = 0;
  float tree = 0;  // 0 for open ground, up to 1 at the tip of a tree
};

enum class ReliefKind { Alps, Fjord, Snowfield, Hills, Dunes, Canyon };

// The shape and the colours of a landscape without end, the same for the same seed.
class Relief {
public:
  static std::unique_ptr<Relief> make(ReliefKind kind, std::uint32_t seed);
  virtual ~Relief() = default;

  // The ground at a place, with all features of at least the size `detail`.
  virtual Ground at(float x, float z, float detail) const = 0;

  // What part of white light the ground throws back.
  virtual Color colorAt(float x, float z, const Ground& ground) const = 0;
};

}  // namespace snaplift::samples
