#include "picturedecoder/ColorConverter.h"

#include <lcms2.h>

namespace snaplift {
namespace {

struct ProfileEnd {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileEnd>;

cmsUInt32Number formatOf(PixelLayout layout, bool isGray) {
  if (isGray) {  // the first byte of four
    return COLORSPACE_SH(PT_GRAY) | EXTRA_SH(3) | CHANNELS_SH(1) | BYTES_SH(1);
  }
  switch (layout) {
    case PixelLayout::Bgra:
      return TYPE_BGRA_8;
    case PixelLayout::Rgba:
      return TYPE_RGBA_8;
    case PixelLayout::Cmyk:
      return TYPE_CMYK_8;
    case PixelLayout::InvertedCmyk:
      return TYPE_CMYK_8_REV;
  }
  return TYPE_BGRA_8;
}

bool isCmyk(PixelLayout layout) {
  return layout == PixelLayout::Cmyk || layout == PixelLayout::InvertedCmyk;
}

std::shared_ptr<void> transformOf(PixelLayout layout, bool isGray, ByteView bytes) {
  const Profile profile(
      bytes.empty()
          ? nullptr
          : cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
  const cmsColorSpaceSignature space = isGray           ? cmsSigGrayData
                                       : isCmyk(layout) ? cmsSigCmykData
                                                        : cmsSigRgbData;
  if (!profile || cmsGetColorSpace(profile.get()) != space) {
    return nullptr;
  }
  const Profile screen(cmsCreate_sRGBProfile());
  cmsHTRANSFORM transform = cmsCreateTransform(profile.get(), formatOf(layout, isGray),
                                               screen.get(), TYPE_BGRA_8, INTENT_PERCEPTUAL, 0);
  return transform == nullptr ? nullptr : std::shared_ptr<void>(transform, &cmsDeleteTransform);
}

std::uint8_t product(unsigned a, unsigned b) {
  const unsigned exact = a * b + 128;
  return static_cast<std::uint8_t>((exact + (exact >> 8)) >> 8);
}

void premultiply(std::uint8_t* pixel, std::uint8_t alpha) {
  for (int c = 0; c < 3; ++c) {
    pixel[c] = product(pixel[c], alpha);
  }
  pixel[3] = alpha;
}

}  // namespace

ColorConverter::ColorConverter(PixelLayout layout, bool isOpaque, bool isGray, ByteView profile)
    : m_layout(layout), m_isOpaque(isOpaque), m_transform(transformOf(layout, isGray, profile)) {}

const std::uint8_t* ColorConverter::convert(const std::uint8_t* source, std::uint8_t* target,
                                            std::size_t count) const {
  if (!m_transform && m_isOpaque && m_layout == PixelLayout::Bgra) {
    return source;
  }
  if (m_transform) {
    cmsDoTransform(m_transform.get(), source, target, static_cast<cmsUInt32Number>(count));
  }
  const bool isInk = isCmyk(m_layout);
  const unsigned flip = m_layout == PixelLayout::Cmyk ? UINT8_MAX : 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint8_t* from = source + 4 * i;
    std::uint8_t* to = target + 4 * i;
    if (!m_transform && isInk) {
      for (int c = 0; c < 3; ++c) {  // blue is where yellow is not
        to[c] = product(from[2 - c] ^ flip, from[3] ^ flip);
      }
    } else if (!m_transform) {
      const bool isSwapped = m_layout == PixelLayout::Rgba;
      to[0] = from[isSwapped ? 2 : 0];
      to[1] = from[1];
      to[2] = from[isSwapped ? 0 : 2];
    }
    premultiply(to, m_isOpaque ? UINT8_MAX : from[3]);
  }
  return target;
}

}  // namespace snaplift
