#pragma once

#include <chrono>
#include <thread>

namespace snaplift {

// Ends the process when its own end takes too long: nobody can stop a thread that waits for a disk
// that does not answer, and whoever closed a window wants it gone. Whatever has to be finished is
// finished before the time is set.
class EndInTime {
public:
  // From here on the process has so long until this object goes; else it ends at once with
  // `status`.
  void set(std::chrono::milliseconds time, int status);

private:
  std::jthread m_thread;
};

}  // namespace snaplift
