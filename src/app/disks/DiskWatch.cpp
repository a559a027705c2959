#include "app/disks/DiskWatch.h"

#include <QSocketNotifier>

#include <fcntl.h>

#include "backups/BackupPlaces.h"

namespace snaplift {

DiskWatch::Waiting::Waiting(DiskWatch& watch, const std::string& backup)
    : m_watch(watch), m_backup(backup) {
  {
    const std::lock_guard lock(watch.m_mutex);
    m_place = watch.m_waiting.insert(watch.m_waiting.end(), this);
  }
  if (!watch.m_isTimed.exchange(true)) {
    QMetaObject::invokeMethod(
        &watch, [&watch] { watch.m_timer.start(watch.m_patience / 4); }, Qt::QueuedConnection);
  }
}

DiskWatch::Waiting::~Waiting() {
  const std::lock_guard lock(m_watch.m_mutex);
  m_watch.m_waiting.erase(m_place);
}

DiskWatch::DiskWatch(QObject* parent, std::chrono::milliseconds patience)
    : QObject(parent),
      m_patience(patience),
      m_mounts(::open("/proc/self/mounts", O_RDONLY | O_CLOEXEC)) {
  if (m_mounts) {
    // The system calls a change of this file an exception.
    auto* notifier = new QSocketNotifier(m_mounts.get(), QSocketNotifier::Exception, this);
    connect(notifier, &QSocketNotifier::activated, this, &DiskWatch::disksChanged);
  }
  connect(&m_timer, &QTimer::timeout, this, &DiskWatch::lookForSilence);
  m_thread = std::jthread([this](const std::stop_token& stop) { lookAtSuspects(stop); });
}

DiskWatch::~DiskWatch() {
  m_thread.request_stop();
}

void DiskWatch::suspect(const std::string& backup) {
  const std::lock_guard lock(m_mutex);
  m_suspects.insert(backup);
  m_wakeUp.notify_one();
}

void DiskWatch::lookAtSuspects(const std::stop_token& stop) {
  std::unique_lock lock(m_mutex);
  while (m_wakeUp.wait(lock, stop, [this] { return !m_suspects.empty(); })) {
    const std::string backup = m_suspects.extract(m_suspects.begin()).value();
    lock.unlock();
    const bool canBeRead = [&] {
      const Waiting waiting(*this, backup);
      return isBackupReadFromDisk(backup);
    }();
    QMetaObject::invokeMethod(
        this, [this, backup, canBeRead] { emit looked(backup, canBeRead); }, Qt::QueuedConnection);
    lock.lock();
  }
}

// Goes on as long as somebody waits, and once more.
void DiskWatch::lookForSilence() {
  std::string silent;
  {
    const std::lock_guard lock(m_mutex);
    if (m_waiting.empty()) {
      m_timer.stop();
      m_isTimed = false;
    } else if (std::chrono::steady_clock::now() - m_waiting.front()->m_begin >= m_patience) {
      silent = m_waiting.front()->m_backup;
    }
  }
  if (silent != m_silent) {
    m_silent = silent;
    emit isSilent(silent);
  }
}

}  // namespace snaplift
