#include "cli/Interrupt.h"

#include <atomic>
#include <csignal>

namespace snaplift::cli {
namespace {

std::atomic<bool> signalled = false;
static_assert(std::atomic<bool>::is_always_lock_free);  // or a handler could not set it

}  // namespace

void catchInterrupts() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) {
      continue;  // by nohup, or a shell that runs the program in the background
    }
    action.sa_handler = [](int) { signalled = true; };
    // A file in hand is to be finished: no call of the system may end early because of the signal.
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    ::sigaction(signal, &action, nullptr);
  }
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

bool interrupted() {
  return signalled;
}

}  // namespace snaplift::cli
