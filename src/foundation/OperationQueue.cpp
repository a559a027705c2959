#include "foundation/OperationQueue.h"

#include <algorithm>
#include <utility>

namespace snaplift {

OperationQueue::OperationQueue(Observer observer, unsigned workers)
    : m_observer(std::move(observer)),
      m_workerCount(workers ? workers : std::max(1U, std::thread::hardware_concurrency())) {}

OperationQueue::~OperationQueue() {
  const std::lock_guard lock(m_mutex);
  m_waiting.clear();
  m_ending = true;
  m_added.notify_all();
}

void OperationQueue::addOperation(Operation operation) {
  {
    const std::lock_guard lock(m_mutex);
    m_waiting.push_back(std::move(operation));
    startWorkers();
    m_added.notify_one();
  }
  tellObserver();
}

void OperationQueue::startWorkers() {
  while (m_workers.size() < std::min<std::size_t>(m_workerCount, m_waiting.size() + m_running)) {
    m_workers.emplace_back([this] { work(); });
  }
}

std::size_t OperationQueue::operationCount() const {
  const std::lock_guard lock(m_mutex);
  return m_waiting.size() + m_running;
}

void OperationQueue::cancelAllOperations() {
  std::deque<Operation> dropped;  // destroyed without the lock: operations may own anything
  {
    const std::lock_guard lock(m_mutex);
    dropped.swap(m_waiting);
    m_finished.notify_all();
  }
  tellObserver();
}

void OperationQueue::waitUntilAllOperationsAreFinished() {
  std::unique_lock lock(m_mutex);
  m_finished.wait(lock, [this] { return m_waiting.empty() && m_running == 0; });
}

void OperationQueue::work() {
  std::unique_lock lock(m_mutex);
  while (true) {
    m_added.wait(lock, [this] { return m_ending || !m_waiting.empty(); });
    if (m_ending) {
      return;
    }
    Operation operation = std::move(m_waiting.front());
    m_waiting.pop_front();
    ++m_running;
    lock.unlock();
    operation();
    operation = {};
    lock.lock();
    --m_running;
    m_finished.notify_all();
    lock.unlock();
    tellObserver();
    lock.lock();
  }
}

void OperationQueue::tellObserver() const {
  if (m_observer) {
    m_observer();
  }
}

}  // namespace snaplift
