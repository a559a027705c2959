#include "foundation/EndInTime.h"

#include <condition_variable>
#include <mutex>
#include <stop_token>

#include <unistd.h>

namespace snaplift {

void EndInTime::set(std::chrono::milliseconds time, int status) {
  m_thread = std::jthread([time, status](const std::stop_token& stop) {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any wakeUp;
    wakeUp.wait_for(lock, stop, time, [] { return false; });
    if (!stop.stop_requested()) {
      ::_exit(status);
    }
  });
}

}  // namespace snaplift
