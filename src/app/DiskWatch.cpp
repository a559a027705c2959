#include "app/DiskWatch.h"

#include <QSocketNotifier>

#include <fcntl.h>

#include "backups/BackupPlaces.h"

namespace snaplift {

DiskWatch::DiskWatch(QObject* parent)
    : QObject(parent), m_mounts(::open("/proc/self/mounts", O_RDONLY | O_CLOEXEC)) {
  if (m_mounts) {
    // The system calls a change of this file an exception.
    auto* notifier = new QSocketNotifier(m_mounts.get(), QSocketNotifier::Exception, this);
    connect(notifier, &QSocketNotifier::activated, this, &DiskWatch::disksChanged);
  }
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
    const bool canBeRead = isBackupReadFromDisk(backup);
    QMetaObject::invokeMethod(
        this, [this, backup, canBeRead] { emit looked(backup, canBeRead); }, Qt::QueuedConnection);
    lock.lock();
  }
}

}  // namespace snaplift
