#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "widgets/thumbnails/ImageBrowserItem.h"
#include "widgets/thumbnails/Thumbnail.h"

namespace snaplift {

// One piece of work of a ThumbnailLoader.
struct ThumbnailRequest {
  enum class Kind {
    Preview,  // the embedded preview, if it would do for `pixels`
    Decode,   // the photo itself, with `pixels` on its longer side
    Shrink    // `source`, a thumbnail that is larger, with `pixels` on its longer side
  };

  ImageBrowserItemPointer item;
  std::string uid;
  Kind kind = Kind::Decode;
  int pixels = 0;
  Thumbnail source;
};

struct ThumbnailResult {
  std::string uid;
  ThumbnailRequest::Kind kind;
  int pixels;  // as requested
  Thumbnail thumbnail;
};

// What the decoders of one loader may cost together.
struct LoaderLimits {
  std::size_t memory = 200'000'000;       // shared evenly among the workers
  std::size_t largeMemory = 200'000'000;  // beside it, for one picture that needs more; 0: none
  std::chrono::milliseconds time{10'000};
  std::string decoder;  // see DecoderLimits::program
};

// Makes thumbnails on worker threads, in the order that it was given last. It belongs to one view
// and is used on the view's thread; the workers hold copies of what they need and never touch the
// view. Results wait here until they are taken, so that a hundred of them cost one hand-over.
//
// Each worker reads photos and has a decoder of its own decode them. A photo that cannot be read or
// decoded is a result like any other. One that needs more memory than a worker's share comes behind
// all others, one at a time. The destructor ends the decoders and joins the workers; a photo that
// is just being read is read to its end.
class ThumbnailLoader {
public:
  // `resultsWait` is called on a worker, once, when results begin to wait; again only after they
  // have been taken. `workers` 0: as many as there are processors, of five at most.
  explicit ThumbnailLoader(std::function<void()> resultsWait, unsigned workers = 0,
                           LoaderLimits limits = {});
  ThumbnailLoader(const ThumbnailLoader&) = delete;
  ThumbnailLoader& operator=(const ThumbnailLoader&) = delete;
  ~ThumbnailLoader();

  // Replaces the work that has not begun, first come first; what runs and is no longer asked for
  // may end within moments, and at once where nothing is asked for. What runs or whose result waits
  // is not begun a second time.
  void setWork(std::vector<ThumbnailRequest> requests);
  std::vector<ThumbnailResult> takeResults();
  // Whether nothing is queued, running or waiting to be taken.
  bool isIdle() const;

private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace snaplift
