#pragma once

#include <condition_variable>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace snaplift {

// Work on a list by any number of threads, whose results are taken in the order of the list, one at
// a time: who writes photos may be many, but they get their names one after the other, so that a
// name does not depend on who was faster. Nobody waits for his turn: a thread leaves its result
// behind and goes on, and whoever brings the one that was waited for takes all that are due. How
// far the threads may run ahead is limited.
//
// All functions are safe to call from any thread.
template <class Result>
class OrderedWork {
public:
  OrderedWork(std::size_t count, std::size_t mostAhead) : m_count(count), m_mostAhead(mostAhead) {}
  OrderedWork(const OrderedWork&) = delete;
  OrderedWork& operator=(const OrderedWork&) = delete;

  // The next index to work on; nothing at the end and after stop(). Waits while too many results
  // are not yet taken.
  std::optional<std::size_t> begin() {
    std::unique_lock lock(m_mutex);
    m_advanced.wait(lock, [this] { return m_isStopped || m_begun - m_taken < m_mostAhead; });
    return m_isStopped || m_begun == m_count ? std::nullopt : std::optional(m_begun++);
  }

  // Hands in the result of an index that begin() gave. `take(index, result)` is called for it and
  // for others that are due, on this thread or on another that is at it.
  template <class Take>
  void end(std::size_t index, Result result, const Take& take) {
    std::unique_lock lock(m_mutex);
    m_waiting.emplace(index, std::move(result));
    if (std::exchange(m_isTaking, true)) {
      return;
    }
    for (auto due = m_waiting.find(m_taken); due != m_waiting.end();
         due = m_waiting.find(m_taken)) {
      const auto node = m_waiting.extract(due);
      lock.unlock();
      take(node.key(), std::move(node.mapped()));
      lock.lock();
      ++m_taken;
      m_advanced.notify_all();
    }
    m_isTaking = false;
  }

  // Nothing more is begun. What was begun is to be ended as usual.
  void stop() {
    const std::lock_guard lock(m_mutex);
    m_isStopped = true;
    m_advanced.notify_all();
  }

  // How many were begun, and how many are still to come: of a stopped list, those that were begun.
  std::size_t begun() const {
    const std::lock_guard lock(m_mutex);
    return m_begun;
  }
  std::size_t remaining() const {
    const std::lock_guard lock(m_mutex);
    return (m_isStopped ? m_begun : m_count) - m_taken;
  }

private:
  const std::size_t m_count;
  const std::size_t m_mostAhead;
  mutable std::mutex m_mutex;
  std::condition_variable m_advanced;
  std::size_t m_begun = 0;
  std::size_t m_taken = 0;
  bool m_isTaking = false;
  bool m_isStopped = false;
  std::map<std::size_t, Result> m_waiting;
};

}  // namespace snaplift
