#include "toolkit/ThumbnailLoader.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "toolkit/PictureHeader.h"

namespace snaplift {
namespace {

using Kind = ThumbnailRequest::Kind;

// Decodes that hold more than this are run one at a time.
constexpr std::int64_t heavyBytes = 200'000'000;

struct Job {
  ThumbnailRequest request;
  bool isHeavy = false;  // known only once the photo's bytes have been seen
};

struct RunningJob {
  std::string uid;
  Kind kind;
  int pixels;
  bool isHeavy;
  std::atomic<bool> stop = false;
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

}  // namespace

struct ThumbnailLoader::State {
  mutable std::mutex mutex;
  std::condition_variable changed;
  // Everything below is guarded by `mutex`.
  std::deque<Job> queue;
  std::list<RunningJob> running;
  std::vector<ThumbnailResult> results;
  bool ends = false;

  DecodeLimits limits;
  std::function<void()> resultsWait;
  std::vector<std::thread> workers;

  void work();
  std::deque<Job>::iterator nextJob();
  bool heavyRuns() const;
  std::optional<Thumbnail> run(Job& job, const std::atomic<bool>& stop) const;
  bool keepResult(const RunningJob& job, std::optional<Thumbnail> thumbnail, Job&& begun);
};

bool ThumbnailLoader::State::heavyRuns() const {
  return std::any_of(running.begin(), running.end(), [](const auto& job) { return job.isHeavy; });
}

std::deque<Job>::iterator ThumbnailLoader::State::nextJob() {
  const bool heavyMayRun = !heavyRuns();
  return std::find_if(queue.begin(), queue.end(),
                      [&](const Job& job) { return heavyMayRun || !job.isHeavy; });
}

// Nothing: the job turned out to be heavy and is to come again when it is its turn.
std::optional<Thumbnail> ThumbnailLoader::State::run(Job& job,
                                                     const std::atomic<bool>& stop) const {
  const ThumbnailRequest& request = job.request;
  if (request.kind == Kind::Shrink) {
    return shrunk(request);
  }
  const std::optional<Bytes> bytes = request.item->imageRepresentation();
  if (!bytes) {
    Thumbnail unreadable;
    unreadable.state = Thumbnail::State::Unreadable;
    return unreadable;
  }
  if (request.kind == Kind::Preview) {
    return embeddedPreview(*bytes, request.pixels, limits);
  }
  const std::optional<PictureHeader> header = pictureHeader(*bytes);
  if (!job.isHeavy && header && header->decodedBytes > heavyBytes &&
      header->decodedBytes <= limits.bytes) {
    job.isHeavy = true;
    return std::nullopt;
  }
  return decodeThumbnail(*bytes, request.pixels, limits, stop);
}

// Whether results begin to wait. Called with the mutex held.
bool ThumbnailLoader::State::keepResult(const RunningJob& job, std::optional<Thumbnail> thumbnail,
                                        Job&& begun) {
  if (job.stop) {
    return false;
  }
  if (!thumbnail) {
    queue.push_back(std::move(begun));
    return false;
  }
  results.push_back({job.uid, job.kind, job.pixels, std::move(*thumbnail)});
  return results.size() == 1;
}

void ThumbnailLoader::State::work() {
  std::unique_lock lock(mutex);
  while (!ends) {
    const auto next = nextJob();
    if (next == queue.end()) {
      changed.wait(lock);
      continue;
    }
    Job job = std::move(*next);
    queue.erase(next);
    const auto current = running.emplace(running.end());
    current->uid = job.request.uid;
    current->kind = job.request.kind;
    current->pixels = job.request.pixels;
    current->isHeavy = job.isHeavy;

    lock.unlock();
    std::optional<Thumbnail> thumbnail = run(job, current->stop);
    lock.lock();

    const bool tell = keepResult(*current, std::move(thumbnail), std::move(job));
    running.erase(current);
    changed.notify_all();  // a heavy job may have become free
    if (tell) {
      lock.unlock();
      resultsWait();
      lock.lock();
    }
  }
}

ThumbnailLoader::ThumbnailLoader(std::function<void()> resultsWait, unsigned workers,
                                 const DecodeLimits& limits)
    : m_state(std::make_unique<State>()) {
  m_state->limits = limits;
  m_state->resultsWait = std::move(resultsWait);
  const unsigned count = workers != 0 ? workers : std::max(std::thread::hardware_concurrency(), 1U);
  for (unsigned i = 0; i < count; ++i) {
    m_state->workers.emplace_back(&State::work, m_state.get());
  }
}

ThumbnailLoader::~ThumbnailLoader() {
  {
    const std::lock_guard lock(m_state->mutex);
    m_state->ends = true;
    m_state->queue.clear();
    for (RunningJob& job : m_state->running) {
      job.stop = true;
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
  std::vector<bool> stillWanted(m_state->running.size(), false);
  for (ThumbnailRequest& request : requests) {
    const auto same = [&](const auto& other) { return isSameWork(request, other); };
    const auto running = std::find_if(m_state->running.begin(), m_state->running.end(), same);
    if (running != m_state->running.end()) {
      stillWanted[static_cast<std::size_t>(std::distance(m_state->running.begin(), running))] =
          true;
    }
    const bool known = (running != m_state->running.end() && !running->stop) ||
                       std::any_of(m_state->results.begin(), m_state->results.end(), same);
    if (!known) {
      m_state->queue.push_back({std::move(request)});
    }
  }
  std::size_t position = 0;
  for (RunningJob& job : m_state->running) {
    job.stop = job.stop || !stillWanted[position++];
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
