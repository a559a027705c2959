#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "widgets/thumbnails/ThumbnailMaker.h"

namespace snaplift {

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
