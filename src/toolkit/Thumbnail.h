#pragma once

#include <QImage>
#include <QSize>
#include <atomic>
#include <chrono>
#include <cstdint>

#include "foundation/Bytes.h"

namespace snaplift {

// A small picture of a photo, or what is known instead of it.
struct Thumbnail {
  enum class State {
    Unknown,     // nothing can be said yet: no embedded preview that would do
    Preview,     // `picture` is the preview that the photo brings along; first paint only
    Ready,       // `picture` is decoded from the photo itself
    Unreadable,  // the photo has no bytes
    Undecodable  // its bytes are no picture, or one beyond the limits
  };

  State state = State::Unknown;
  QImage picture;              // upright
  int pixels = 0;              // the step that `picture` was made for (see thumbnailStep)
  QSize photoSize;             // of the whole photo, upright, in pixels; invalid if not known
  std::int64_t byteCount = 0;  // of the whole photo

  bool isBroken() const { return state == State::Unreadable || state == State::Undecodable; }
};

// What one decode may cost. Beyond it the photo is Undecodable.
struct DecodeLimits {
  std::int64_t pixels = 300'000'000;
  std::int64_t bytes = 1'200'000'000;      // 300 million pixels of four bytes
  std::chrono::milliseconds time{10'000};  // where the pixels do not bound it
};

// The length in pixels of the longer side that a thumbnail is decoded with, for a cell of `pixels`:
// the next of a few fixed steps, each at most one and a half times the one before. So zooming
// scales what is there, and decodes anew only now and then.
int thumbnailStep(int pixels);

// Decodes the picture in `bytes` so that its longer side has `pixels`, scaled while it is read and
// turned upright; a smaller picture keeps its size. Any thread. A picture whose end is missing
// shows what there is. `stop` ends the decode soon after it is set; the result is then of no use.
Thumbnail decodeThumbnail(ByteView bytes, int pixels, const DecodeLimits& limits,
                          const std::atomic<bool>& stop);

// The preview that the photo in `bytes` embeds, upright: where it has at least `pixels` on its
// longer side and the proportions of the photo (cameras and editors embed others, with bars or of
// another crop). Otherwise the state is Unknown, or Undecodable where already the header says so.
Thumbnail embeddedPreview(ByteView bytes, int pixels, const DecodeLimits& limits);

}  // namespace snaplift
