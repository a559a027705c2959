#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "toolkit/ImageBrowserItem.h"
#include "toolkit/Thumbnail.h"

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

// Makes thumbnails on worker threads, in the order that it was given last. It belongs to one view
// and is used on the view's thread; the workers hold copies of what they need and never touch the
// view. Results wait here until they are taken, so that a hundred of them cost one hand-over.
//
// A photo that cannot be read or decoded is a result like any other. Decodes that would hold a lot
// of memory run one at a time, behind all others. The destructor stops the decodes that may
// take long and joins the workers; a photo that is just being read is read to its end.
class ThumbnailLoader {
public:
  // `resultsWait` is called on a worker, once, when results begin to wait; again only after they
  // have been taken. `workers` 0: as many as there are processors.
  explicit ThumbnailLoader(std::function<void()> resultsWait, unsigned workers = 0,
                           const DecodeLimits& limits = {});
  ThumbnailLoader(const ThumbnailLoader&) = delete;
  ThumbnailLoader& operator=(const ThumbnailLoader&) = delete;
  ~ThumbnailLoader();

  // Replaces the work that has not begun, first come first; stops what runs and is no longer asked
  // for. What runs or whose result waits is not begun a second time.
  void setWork(std::vector<ThumbnailRequest> requests);
  std::vector<ThumbnailResult> takeResults();
  // Whether nothing is queued, running or waiting to be taken.
  bool isIdle() const;

private:
  struct State;
  std::unique_ptr<State> m_state;
};

}  // namespace snaplift
