#pragma once

#include <atomic>

#include "foundation/files/FileDescriptor.h"

namespace snaplift {

// Tells a thread that waits for something outside of it (see poll) that the result is no longer
// wanted. Raised on any thread; lowered by who gives the thread its next work.
class StopSignal {
public:
  enum class Level {
    None,
    Soon,  // what is nearly done may come to its end
    Now
  };

  StopSignal();

  // Never lowers the level.
  void raise(Level level);
  void lower();
  Level level() const { return m_level; }

  // Becomes readable when the level rises, until wake-ups are taken.
  int descriptor() const { return m_event.get(); }
  void takeWakeUps() const;

private:
  std::atomic<Level> m_level = Level::None;
  FileDescriptor m_event;
};

}  // namespace snaplift
