#include "widgets/thumbnails/StopSignal.h"

#include <sys/eventfd.h>

namespace snaplift {

StopSignal::StopSignal() : m_event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void StopSignal::raise(Level level) {
  if (level > m_level) {
    m_level = level;
    ::eventfd_write(m_event.get(), 1);
  }
}

void StopSignal::lower() {
  m_level = Level::None;
  takeWakeUps();
}

void StopSignal::takeWakeUps() const {
  eventfd_t count = 0;
  ::eventfd_read(m_event.get(), &count);
}

}  // namespace snaplift
