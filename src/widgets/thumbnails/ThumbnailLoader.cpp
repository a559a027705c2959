#include "widgets/thumbnails/ThumbnailLoader.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "widgets/thumbnails/StopSignal.h"

namespace snaplift {
namespace {

using Kind = ThumbnailRequest::Kind;
using Level = StopSignal::Level;
using Job = ThumbnailJob;

// So that each worker's share of the memory is still enough for a camera's photo.
constexpr unsigned maxWorkers = 5;

template <typename Work>
bool isSameWork(const ThumbnailRequest& request, const Work& other) {
  return request.uid == other.uid && request.kind == other.kind && request.pixels == other.pixels;
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
  std::vector<StopSignal> stops;  // one for each worker
  std::vector<std::thread> workers;

  void work(StopSignal& stop);
  std::deque<Job>::iterator nextJob();
  bool keepResult(const Running& job, std::optional<Thumbnail> thumbnail, Job&& begun);
};

std::deque<Job>::iterator ThumbnailLoader::State::nextJob() {
  const bool largeRuns =
      std::any_of(running.begin(), running.end(), [](const auto& job) { return job.isLarge; });
  return std::find_if(queue.begin(), queue.end(),
                      [&](const Job& job) { return !largeRuns || !job.isLarge; });
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

void ThumbnailLoader::State::work(StopSignal& stop) {
  ThumbnailMaker maker(limits, limits.memory / stops.size());
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
    std::optional<Thumbnail> thumbnail = maker.make(job, stop);
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
  m_state->stops = std::vector<StopSignal>(count);
  for (StopSignal& stop : m_state->stops) {
    m_state->workers.emplace_back(&State::work, m_state.get(), std::ref(stop));
  }
}

ThumbnailLoader::~ThumbnailLoader() {
  {
    const std::lock_guard lock(m_state->mutex);
    m_state->ends = true;
    m_state->queue.clear();
    for (StopSignal& stop : m_state->stops) {
      stop.raise(Level::Now);
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
