#include "widgets/desktop/SignalledEnd.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace snaplift {
namespace {

// From the handler, which may do next to nothing, to the event loop. Open as long as the process: a
// signal may come at any time.
int wakeUpPipe[2] = {-1, -1};

void wakeUp(int /*signal*/) {
  const int before = errno;
  [[maybe_unused]] const ssize_t written = ::write(wakeUpPipe[1], "", 1);
  errno = before;
}

void handle(int signal) {
  struct sigaction action {};
  ::sigaction(signal, nullptr, &action);
  if (action.sa_handler == SIG_IGN) {
    return;
  }
  action.sa_handler = wakeUp;
  // A file in hand is to be finished: no call of the system may end early because of the signal.
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  ::sigaction(signal, &action, nullptr);
}

}  // namespace

SignalledEnd::SignalledEnd(QObject* parent) : QObject(parent) {
  // Ignored by a handler, for programs that are started from here would inherit SIG_IGN.
  for (const int signal : {SIGXFSZ, SIGPIPE}) {
    std::signal(signal, [](int) {});
  }
  if (::pipe2(wakeUpPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
    return;  // signals end the process as they always did
  }
  auto* notifier = new QSocketNotifier(wakeUpPipe[0], QSocketNotifier::Read, this);
  connect(notifier, &QSocketNotifier::activated, this, [notifier] {
    notifier->setEnabled(false);
    QCoreApplication::exit(exitStatus);
  });
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    handle(signal);
  }
}

}  // namespace snaplift
