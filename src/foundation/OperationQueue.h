#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace snaplift {

// Work that a fixed set of threads does in the background, begun in the order in which it was
// added. Exports go through it: one operation a photo.
//
// Every operation may be called on any thread, from inside an operation too, except that an
// operation may not wait for the queue or destroy it.
class OperationQueue {
public:
  using Operation = std::function<void()>;
  using Observer = std::function<void()>;

  // `observer` is called after each change of operationCount(), on the thread that made it: that of
  // addOperation() or cancelAllOperations(), or a worker's when an operation has ended. No lock is
  // held meanwhile. The threads start with the first operation; `workers` 0 means one a core.
  explicit OperationQueue(Observer observer = {}, unsigned workers = 0);
  OperationQueue(const OperationQueue&) = delete;
  OperationQueue& operator=(const OperationQueue&) = delete;
  // Drops what has not begun and waits for what has.
  ~OperationQueue();

  void addOperation(Operation operation);

  // How many operations wait or run.
  std::size_t operationCount() const;

  // Drops the operations that have not begun.
  void cancelAllOperations();

  // Returns when no operation waits or runs.
  void waitUntilAllOperationsAreFinished();

private:
  void startWorkers();
  void work();
  void tellObserver() const;

  const Observer m_observer;
  const unsigned m_workerCount;
  mutable std::mutex m_mutex;
  std::condition_variable m_added;     // or m_ending became true
  std::condition_variable m_finished;  // an operation ended, or some were dropped
  std::deque<Operation> m_waiting;
  std::size_t m_running = 0;
  bool m_ending = false;
  std::vector<std::jthread> m_workers;  // joined before all else goes
};

}  // namespace snaplift
