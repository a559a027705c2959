#include "widgets/desktop/MainThread.h"

#include <QCoreApplication>
#include <QThread>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

namespace snaplift::mainThread {
namespace {

std::mutex handoverMutex;
std::condition_variable handoverChanged;
bool quitting = false;  // guarded by handoverMutex

enum class Handover { Waiting, Running, Done, GivenUp };

}  // namespace

void run(std::function<void()> work) {
  QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(work), Qt::QueuedConnection);
}

bool runAndWait(std::function<void()> work) {
  if (QThread::currentThread() == QCoreApplication::instance()->thread()) {
    work();
    return true;
  }
  auto state = std::make_shared<Handover>(Handover::Waiting);
  auto advance = [state](Handover from, Handover to) {
    const std::lock_guard lock(handoverMutex);
    if (*state != from) {
      return false;
    }
    *state = to;
    handoverChanged.notify_all();
    return true;
  };
  run([advance, work = std::move(work)] {
    if (advance(Handover::Waiting, Handover::Running)) {
      work();
      advance(Handover::Running, Handover::Done);
    }
  });
  std::unique_lock lock(handoverMutex);
  handoverChanged.wait(lock, [&] {
    if (*state == Handover::Waiting && quitting) {
      *state = Handover::GivenUp;
    }
    return *state == Handover::Done || *state == Handover::GivenUp;
  });
  return *state == Handover::Done;
}

void beginQuitting() {
  const std::lock_guard lock(handoverMutex);
  quitting = true;
  handoverChanged.notify_all();
}

void resume() {
  const std::lock_guard lock(handoverMutex);
  quitting = false;
}

}  // namespace snaplift::mainThread
