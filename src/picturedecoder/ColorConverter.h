#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/Bytes.h"

namespace snaplift {

// How a decoder lays out a pixel: four bytes each.
enum class PixelLayout {
  Bgra,         // blue, green, red, alpha
  Rgba,         // red, green, blue, alpha
  Cmyk,         // the inks' amounts
  InvertedCmyk  // 255 less each ink's amount
};

// Brings rows of pixels from a picture's own colours to sRGB, premultiplied with their alpha. A
// profile that is damaged, or of another kind of picture, is as good as none.
class ColorConverter {
public:
  // `isGray`: blue, green and red are one level, and the profile is that of a grey picture.
  ColorConverter(PixelLayout layout, bool isOpaque, bool isGray = false, ByteView profile = {});

  // Converts `count` pixels. The result is `target`, or `source` where nothing had to be done.
  const std::uint8_t* convert(const std::uint8_t* source, std::uint8_t* target,
                              std::size_t count) const;
  bool isOpaque() const { return m_isOpaque; }

private:
  PixelLayout m_layout;
  bool m_isOpaque;
  std::shared_ptr<void> m_transform;  // lcms2's; null without a profile
};

}  // namespace snaplift
