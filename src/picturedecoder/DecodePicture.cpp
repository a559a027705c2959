#include "picturedecoder/DecodePicture.h"

#include <cmath>
#include <string_view>

#include "picturedecoder/HeifPicture.h"
#include "picturedecoder/JpegPicture.h"
#include "picturedecoder/PngPicture.h"

namespace snaplift {
namespace {

using namespace std::string_view_literals;
using Outcome = PictureAnswer::Outcome;

constexpr std::uint32_t maxPreviewSide = 1'024;

bool isJpeg(ByteView bytes) {
  return textOf(bytes).starts_with("\xFF\xD8"sv);
}

bool isPng(ByteView bytes) {
  return textOf(bytes).starts_with("\x89PNG\r\n\x1A\n"sv);
}

// The preview is turned as the photo is: what it says of its own orientation is often missing.
PictureAnswer decodeJpegPreview(ByteView picture, std::uint32_t pixels,
                                const PictureTarget& target) {
  const PictureAnswer none{.outcome = Outcome::NoPreview};
  const auto photo = jpegFacts(picture);
  if (!photo || !isJpeg(photo->preview)) {
    return none;
  }
  const auto preview = jpegFacts(photo->preview);
  if (!preview || !isFitPreview(preview->size, photo->size, pixels)) {
    return none;
  }
  PictureAnswer answer = decodeJpeg(photo->preview, target, photo->orientation);
  if (answer.outcome != Outcome::Decoded || answer.isDamaged) {
    return none;
  }
  const bool isTurned = photo->orientation >= 5;
  answer.wholeWidth = isTurned ? photo->size.height : photo->size.width;
  answer.wholeHeight = isTurned ? photo->size.width : photo->size.height;
  return answer;
}

}  // namespace

bool isFitPreview(PictureSize preview, PictureSize photo, std::uint32_t pixels) {
  constexpr double tolerance = 0.02;  // the short side of a preview is rounded to whole pixels
  const double ratio =
      (double{1} * preview.width * photo.height) / (double{1} * photo.width * preview.height);
  return preview.longerSide() >= pixels && preview.longerSide() <= maxPreviewSide &&
         std::abs(ratio - 1) <= tolerance;
}

PictureAnswer decodePicture(const PictureRequest& request, ByteView picture,
                            std::span<std::uint8_t> pixels) {
  const bool isPreview = request.kind == PictureRequest::Kind::EmbeddedPreview;
  const PictureTarget target{isPreview ? maxPreviewSide : request.pixels, pixels};
  if (isJpeg(picture)) {
    return isPreview ? decodeJpegPreview(picture, request.pixels, target)
                     : decodeJpeg(picture, target);
  }
  if (isHeif(picture)) {
    return isPreview ? decodeHeifPreview(picture, request.pixels, target)
                     : decodeHeif(picture, target);
  }
  if (isPng(picture)) {
    return isPreview ? PictureAnswer{.outcome = Outcome::NoPreview} : decodePng(picture, target);
  }
  return {};
}

}  // namespace snaplift
