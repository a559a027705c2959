#include "cli/Interrupt.h"

#include <atomic>
#include <csignal>

namespace snaplift::cli {
namespace {

std::atomic<bool> signalled = false;
static_assert(std::atomic<bool>::is_always_lock_free);  // or a handler could not set it

}  // namespace

void catchInterrupts() {
  struct sigaction action {};
  action.sa_handler = [](int) { signalled = true; };
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    ::sigaction(signal, &action, nullptr);
  }
}

bool interrupted() {
  return signalled;
}

}  // namespace snaplift::cli
