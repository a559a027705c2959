#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "foundation/Bytes.h"
#include "widgets/thumbnails/ImageBrowserItem.h"
#include "widgets/thumbnails/PictureDecoder.h"
#include "widgets/thumbnails/StopSignal.h"
#include "widgets/thumbnails/Thumbnail.h"

namespace snaplift {

// One piece of work of a ThumbnailLoader.
struct ThumbnailRequest {
  enum class Kind {
    Preview,  // the embedded preview, if it would do for `pixels`
    Decode,   // the photo itself, with `pixels` on its longer side
    Shrink,   // `source`, a thumbnail that is larger, with `pixels` on its longer side
    Facts     // no picture: what the photo's file says, and whether it is there as a whole
  };

  ImageBrowserItemPointer item;
  std::string uid;
  Kind kind = Kind::Decode;
  int pixels = 0;
  Thumbnail source;
};

struct ThumbnailJob {
  ThumbnailRequest request;
  bool isLarge = false;  // known only once a decoder has refused it
};

// What the decoders of one loader may cost together.
struct LoaderLimits {
  std::size_t memory = 160'000'000;       // shared evenly among the workers
  std::size_t largeMemory = 200'000'000;  // beside it, for one picture that needs more; 0: none
  std::chrono::milliseconds time{10'000};
  std::string decoder;  // see DecoderLimits::program
};

// Makes one thumbnail after another for a worker of a ThumbnailLoader: reads what has to be seen of
// the photo and has a decoder of its own decode it. Whoever makes it uses it, on one thread.
class ThumbnailMaker {
public:
  // `memory` is this decoder's share, in bytes.
  ThumbnailMaker(LoaderLimits limits, std::size_t memory);

  // Nothing: the photo turned out to be large and is to come again when it is its turn.
  std::optional<Thumbnail> make(ThumbnailJob& job, const StopSignal& stop);

private:
  DecodedPicture decode(const ThumbnailJob& job, ByteView bytes, const StopSignal& stop);
  std::optional<Thumbnail> devicePreview(const ThumbnailJob& job, const StopSignal& stop);
  Thumbnail filmThumbnail(const ThumbnailJob& job, const StopSignal& stop);

  LoaderLimits m_limits;
  PictureDecoder m_decoder;
};

}  // namespace snaplift
