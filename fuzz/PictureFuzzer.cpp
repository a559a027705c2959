#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <span>
#include <vector>

#include "Require.h"
#include "picturedecoder/heif/HeifPicture.h"
#include "picturedecoder/protocol/PictureFacts.h"

// The decode loop of the picture decoder, without its cage: whatever the bytes, an answer comes
// back that fits what was asked for, and facts that can be.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace snaplift;
  using fuzzing::require;
  using Kind = PictureRequest::Kind;
  constexpr std::uint32_t pixels = 96;
  constexpr std::uint32_t previewPixels = 1'024;
  static std::vector<std::uint8_t> space(std::size_t{4} * previewPixels * previewPixels);
  for (const Kind kind : {Kind::EmbeddedPreview, Kind::Picture}) {
    const bool isPreview = kind == Kind::EmbeddedPreview;
    const std::uint32_t side = isPreview ? previewPixels : pixels;
    PictureAnswer answer;
    try {
      answer = decodePictureOrHeif({kind, pixels}, {data, size},
                                   std::span(space).first(std::size_t{4} * side * side));
    } catch (const std::bad_alloc&) {
      answer.outcome = PictureAnswer::Outcome::TooLarge;
    }
    if (answer.outcome == PictureAnswer::Outcome::Decoded) {
      require(answer.width >= 1 && answer.width <= side);
      require(answer.height >= 1 && answer.height <= side);
      require(answer.wholeWidth >= 1 && answer.wholeHeight >= 1);
    }
  }
  PictureFacts facts;
  try {
    if (decodePictureOrHeif({Kind::Facts, 0}, {data, size}, std::span(space).first(sizeof facts))
            .outcome == PictureAnswer::Outcome::Decoded) {
      std::memcpy(&facts, space.data(), sizeof facts);
      const PictureFacts believed = plausible(facts);
      require(std::memcmp(&believed, &facts, sizeof facts) == 0);
    }
  } catch (const std::bad_alloc&) {
    return 0;
  }
  return 0;
}
