#include "picturedecoder/DecodePicture.h"

#include <cmath>
#include <cstring>
#include <string_view>

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

// The brand behind it may be a film's; libheif knows.
bool mayBeHeif(ByteView bytes) {
  constexpr std::size_t sizeLength = 4;
  return bytes.size() > sizeLength && textOf(bytes).substr(sizeLength).starts_with("ftyp"sv);
}

bool isPng(ByteView bytes) {
  return textOf(bytes).starts_with("\x89PNG\r\n\x1A\n"sv);
}

void setWholeSize(PictureAnswer& answer, PictureSize size) {
  answer.wholeWidth = size.width;
  answer.wholeHeight = size.height;
}

// The preview is turned as the photo is: what it says of its own orientation is often missing.
PictureAnswer decodeJpegPreview(ByteView picture, std::uint32_t pixels,
                                const PictureTarget& target) {
  const PictureAnswer none{.outcome = Outcome::NoPreview};
  const auto photo = jpegFacts(picture);
  if (!photo || !isJpeg(photo->exif.preview())) {
    return none;
  }
  const auto preview = jpegFacts(photo->exif.preview());
  if (!preview || !isFitPreview(preview->size, photo->size, pixels)) {
    return none;
  }
  PictureAnswer answer = decodeJpeg(photo->exif.preview(), target, photo->exif.orientation());
  if (answer.outcome != Outcome::Decoded || answer.isDamaged) {
    return none;
  }
  setWholeSize(answer, uprightSize(photo->size, photo->exif.orientation()));
  return answer;
}

PictureAnswer readFacts(ByteView picture, std::span<std::uint8_t> space) {
  if (isPng(picture)) {
    return answerOfFacts({}, pngSize(picture), space);
  }
  const auto photo = isJpeg(picture) ? jpegFacts(picture) : std::nullopt;
  return photo ? answerOfFacts(photo->exif.facts(),
                               uprightSize(photo->size, photo->exif.orientation()), space)
               : PictureAnswer{};
}

}  // namespace

bool isFitPreview(PictureSize preview, PictureSize photo, std::uint32_t pixels) {
  constexpr double tolerance = 0.02;  // the short side of a preview is rounded to whole pixels
  const double ratio =
      (double{1} * preview.width * photo.height) / (double{1} * photo.width * preview.height);
  return preview.longerSide() >= pixels && preview.longerSide() <= maxPreviewSide &&
         std::abs(ratio - 1) <= tolerance;
}

PictureTarget targetOf(const PictureRequest& request, std::span<std::uint8_t> pixels) {
  return {request.kind == PictureRequest::Kind::EmbeddedPreview ? maxPreviewSide : request.pixels,
          pixels};
}

PictureAnswer answerOfFacts(const PictureFacts& facts, PictureSize size,
                            std::span<std::uint8_t> space) {
  if (size.pixelCount() == 0 || space.size() < sizeof facts) {
    return {};
  }
  std::memcpy(space.data(), &facts, sizeof facts);
  PictureAnswer answer{.outcome = Outcome::Decoded};
  setWholeSize(answer, size);
  return answer;
}

PictureAnswer decodePicture(const PictureRequest& request, ByteView picture,
                            std::span<std::uint8_t> pixels) {
  if (mayBeHeif(picture)) {
    return {.outcome = Outcome::OtherDecoder};
  }
  if (request.kind == PictureRequest::Kind::Facts) {
    return readFacts(picture, pixels);
  }
  const bool isPreview = request.kind == PictureRequest::Kind::EmbeddedPreview;
  const PictureTarget target = targetOf(request, pixels);
  if (isJpeg(picture)) {
    return isPreview ? decodeJpegPreview(picture, request.pixels, target)
                     : decodeJpeg(picture, target);
  }
  if (isPng(picture)) {
    return isPreview ? PictureAnswer{.outcome = Outcome::NoPreview} : decodePng(picture, target);
  }
  return {};
}

}  // namespace snaplift
