#include "widgets/thumbnails/ThumbnailLoader.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "widgets/thumbnails/PictureDecoder.h"

namespace snaplift {
namespace {

using Kind = ThumbnailRequest::Kind;
using Level = StopSignal::Level;

// So that each worker's share of the memory is still enough for a camera's photo.
constexpr unsigned maxWorkers = 5;
// Exif stands at the front of a JPEG file, and its preview in it.
constexpr std::size_t exifReach = std::size_t{256} << 10;

struct Job {
  ThumbnailRequest request;
  bool isLarge = false;  // known only once a decoder has refused it
};

template <typename Work>
bool isSameWork(const ThumbnailRequest& request, const Work& other) {
  return request.uid == other.uid && request.kind == other.kind && request.pixels == other.pixels;
}

Thumbnail shrunk(const ThumbnailRequest& request) {
  Thumbnail result = request.source;
  result.picture = request.source.picture.scaled(request.pixels, request.pixels,
                                                 Qt::KeepAspectRatio, Qt::SmoothTransformation);
  result.pixels = request.pixels;
  return result;
}

// The bytes that a decoder has to see.
std::optional<Bytes> neededBytes(const ImageBrowserItem& item, Kind kind) {
  if (kind == Kind::Preview) {
    std::optional<Bytes> bytes = item.imageBeginning(exifReach);
    if (!bytes || bytes->size() < exifReach || textOf(*bytes).starts_with("\xFF\xD8")) {
      return bytes;
    }
  }
  return item.imageRepresentation();
}

Thumbnail brokenThumbnail(ImageBrowserItem::Content content) {
  Thumbnail broken;
  broken.state = content == ImageBrowserItem::Content::Missing ? Thumbnail::State::Missing
                                                               : Thumbnail::State::Unreadable;
  return broken;
}

Thumbnail thumbnailOf(DecodedPicture&& decoded, const ThumbnailRequest& request) {
  Thumbnail result;
  const bool isPreview = request.kind == Kind::Preview;
  switch (decoded.outcome) {
    case DecodedPicture::Outcome::Decoded:
      result.state = isPreview ? Thumbnail::State::Preview : Thumbnail::State::Ready;
      break;
    case DecodedPicture::Outcome::NoPreview:
      result.state = Thumbnail::State::Unknown;
      break;
    default:
      result.state = Thumbnail::State::Undecodable;
  }
  result.pixels =
      isPreview ? std::max(decoded.image.width(), decoded.image.height()) : request.pixels;
  result.picture = std::move(decoded.image);
  result.photoSize = decoded.wholeSize;
  result.isDamaged = decoded.isDamaged;
  return result;
}

}  // namespace

struct ThumbnailLoader::State {
  // What a worker is at.
  struct Running {
    std::string uid;
    Kind kind;
    int pixels;
    bool isLarge;
    StopSignal* stop;  // the worker's own
  };

  mutable std::mutex mutex;
  std::condition_variable changed;
  // Everything below is guarded by `mutex`.
  std::deque<Job> queue;
  std::list<Running> running;
  std::vector<ThumbnailResult> results;
  bool ends = false;

  LoaderLimits limits;
  std::function<void()> resultsWait;
  std::vector<std::thread> workers;

  void work(std::size_t memory);
  std::deque<Job>::iterator nextJob();
  std::optional<Thumbnail> run(Job& job, PictureDecoder& decoder, const StopSignal& stop) const;
  DecodedPicture decode(const Job& job, ByteView bytes, PictureDecoder& decoder,
                        const StopSignal& stop) const;
  std::optional<Thumbnail> devicePreview(const Job& job, PictureDecoder& decoder,
                                         const StopSignal& stop) const;
  Thumbnail filmThumbnail(const Job& job, PictureDecoder& decoder, const StopSignal& stop) const;
  bool keepResult(const Running& job, std::optional<Thumbnail> thumbnail, Job&& begun);
};

std::deque<Job>::iterator ThumbnailLoader::State::nextJob() {
  const bool largeRuns =
      std::any_of(running.begin(), running.end(), [](const auto& job) { return job.isLarge; });
  return std::find_if(queue.begin(), queue.end(),
                      [&](const Job& job) { return !largeRuns || !job.isLarge; });
}

// A decoder that may take more is there for one picture only.
DecodedPicture ThumbnailLoader::State::decode(const Job& job, ByteView bytes,
                                              PictureDecoder& decoder,
                                              const StopSignal& stop) const {
  const PictureRequest request{job.request.kind == Kind::Preview
                                   ? PictureRequest::Kind::EmbeddedPreview
                                   : PictureRequest::Kind::Picture,
                               static_cast<std::uint32_t>(job.request.pixels)};
  return job.isLarge ? PictureDecoder({limits.decoder, limits.largeMemory, limits.time})
                           .decode(request, bytes, stop)
                     : decoder.decode(request, bytes, stop);
}

// The small picture that the source has beside the photo, as a first paint; nothing where there is
// none that can be shown. How large the whole photo is, it does not tell.
std::optional<Thumbnail> ThumbnailLoader::State::devicePreview(const Job& job,
                                                               PictureDecoder& decoder,
                                                               const StopSignal& stop) const {
  const std::optional<Bytes> bytes = job.request.item->imageThumbnail();
  if (!bytes) {
    return std::nullopt;
  }
  DecodedPicture decoded = decoder.decode(
      {PictureRequest::Kind::Picture, static_cast<std::uint32_t>(job.request.pixels)}, *bytes,
      stop);
  if (decoded.outcome != DecodedPicture::Outcome::Decoded) {
    return std::nullopt;
  }
  Thumbnail result = thumbnailOf(std::move(decoded), job.request);
  result.state = Thumbnail::State::Preview;
  result.photoSize = {};
  return result;
}

// There is nothing more to come than that picture, or none.
Thumbnail ThumbnailLoader::State::filmThumbnail(const Job& job, PictureDecoder& decoder,
                                                const StopSignal& stop) const {
  Thumbnail film = devicePreview(job, decoder, stop).value_or(Thumbnail());
  film.state = Thumbnail::State::Ready;
  film.pixels = job.request.pixels;
  film.isFilm = true;
  film.filmLength = job.request.item->filmLength();
  return film;
}

// Nothing: the photo turned out to be large and is to come again when it is its turn.
std::optional<Thumbnail> ThumbnailLoader::State::run(Job& job, PictureDecoder& decoder,
                                                     const StopSignal& stop) const {
  if (job.request.kind == Kind::Shrink) {
    return shrunk(job.request);
  }
  using Content = ImageBrowserItem::Content;
  const ImageBrowserItem& item = *job.request.item;
  const bool isPreview = job.request.kind == Kind::Preview;
  if (item.isFilm() || (isPreview && item.isThumbnailFirst())) {
    const Content content = item.imageContent();
    if (content == Content::Missing || content == Content::Unreadable) {
      return brokenThumbnail(content);
    }
    std::optional<Thumbnail> result =
        item.isFilm() ? filmThumbnail(job, decoder, stop) : devicePreview(job, decoder, stop);
    if (result) {
      result->isDamaged = content == Content::Short;
      return result;
    }
  }
  const std::optional<Bytes> bytes = neededBytes(item, job.request.kind);
  if (!bytes) {
    return brokenThumbnail(item.imageContent());
  }
  DecodedPicture decoded = decode(job, *bytes, decoder, stop);
  if (isPreview && decoded.outcome == DecodedPicture::Outcome::NoPreview) {
    if (auto result = devicePreview(job, decoder, stop)) {
      return result;
    }
  }
  if (decoded.outcome == DecodedPicture::Outcome::TooLarge && !job.isLarge &&
      limits.largeMemory > 0) {
    job.isLarge = true;
    return std::nullopt;
  }
  Thumbnail result = thumbnailOf(std::move(decoded), job.request);
  if (!isPreview) {
    result.byteCount = static_cast<std::int64_t>(bytes->size());
  }
  result.isDamaged = result.isDamaged || item.imageContent() == Content::Short;
  return result;
}

// Whether results begin to wait. Called with the mutex held.
bool ThumbnailLoader::State::keepResult(const Running& job, std::optional<Thumbnail> thumbnail,
                                        Job&& begun) {
  if (job.stop->level() != Level::None) {
    return false;
  }
  if (!thumbnail) {
    queue.push_back(std::move(begun));
    return false;
  }
  results.push_back({job.uid, job.kind, job.pixels, std::move(*thumbnail)});
  return results.size() == 1;
}

void ThumbnailLoader::State::work(std::size_t memory) {
  StopSignal stop;
  PictureDecoder decoder({limits.decoder, memory, limits.time});
  std::unique_lock lock(mutex);
  while (!ends) {
    const auto next = nextJob();
    if (next == queue.end()) {
      changed.wait(lock);
      continue;
    }
    Job job = std::move(*next);
    queue.erase(next);
    stop.lower();
    const auto current = running.insert(
        running.end(), {job.request.uid, job.request.kind, job.request.pixels, job.isLarge, &stop});

    lock.unlock();
    std::optional<Thumbnail> thumbnail = run(job, decoder, stop);
    lock.lock();

    const bool tell = keepResult(*current, std::move(thumbnail), std::move(job));
    running.erase(current);
    changed.notify_all();  // a large photo may have become free
    if (tell) {
      lock.unlock();
      resultsWait();
      lock.lock();
    }
  }
}

ThumbnailLoader::ThumbnailLoader(std::function<void()> resultsWait, unsigned workers,
                                 LoaderLimits limits)
    : m_state(std::make_unique<State>()) {
  m_state->limits = std::move(limits);
  m_state->resultsWait = std::move(resultsWait);
  const unsigned count =
      workers != 0 ? workers : std::clamp(std::thread::hardware_concurrency(), 1U, maxWorkers);
  for (unsigned i = 0; i < count; ++i) {
    m_state->workers.emplace_back(&State::work, m_state.get(), m_state->limits.memory / count);
  }
}

ThumbnailLoader::~ThumbnailLoader() {
  {
    const std::lock_guard lock(m_state->mutex);
    m_state->ends = true;
    m_state->queue.clear();
    for (const State::Running& job : m_state->running) {
      job.stop->raise(Level::Now);
    }
  }
  m_state->changed.notify_all();
  for (std::thread& worker : m_state->workers) {
    worker.join();
  }
}

void ThumbnailLoader::setWork(std::vector<ThumbnailRequest> requests) {
  std::deque<Job> dropped;  // items may end with it, so it is destroyed outside the lock
  const std::lock_guard lock(m_state->mutex);
  dropped.swap(m_state->queue);
  const Level unwanted = requests.empty() ? Level::Now : Level::Soon;
  std::vector<bool> stillWanted(m_state->running.size(), false);
  for (ThumbnailRequest& request : requests) {
    const auto same = [&](const auto& other) { return isSameWork(request, other); };
    const auto running = std::find_if(m_state->running.begin(), m_state->running.end(), same);
    if (running != m_state->running.end()) {
      stillWanted[static_cast<std::size_t>(std::distance(m_state->running.begin(), running))] =
          true;
    }
    const bool known =
        (running != m_state->running.end() && running->stop->level() == Level::None) ||
        std::any_of(m_state->results.begin(), m_state->results.end(), same);
    if (!known) {
      m_state->queue.push_back({std::move(request)});
    }
  }
  std::size_t position = 0;
  for (const State::Running& job : m_state->running) {
    if (!stillWanted[position++]) {
      job.stop->raise(unwanted);
    }
  }
  m_state->changed.notify_all();
}

std::vector<ThumbnailResult> ThumbnailLoader::takeResults() {
  const std::lock_guard lock(m_state->mutex);
  return std::exchange(m_state->results, {});
}

bool ThumbnailLoader::isIdle() const {
  const std::lock_guard lock(m_state->mutex);
  return m_state->queue.empty() && m_state->running.empty() && m_state->results.empty();
}

}  // namespace snaplift
