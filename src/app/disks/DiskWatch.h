#pragma once

#include <QObject>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "foundation/files/FileDescriptor.h"

namespace snaplift {

// Finds out whether a backup that is open can still be read: its disk may have been taken out, or
// fail, or not answer at all. Nothing is asked again and again, so that a disk at rest stays at
// rest: somebody has to suspect a backup, or to wait for it. That a disk came or went is told, too,
// where the system tells it (Linux does).
//
// Looks on a thread of its own, since a dying disk takes its time; tells on the user interface's.
class DiskWatch : public QObject {
  Q_OBJECT

public:
  // After so long without an answer a disk counts as silent. One that was at rest starts in less.
  static constexpr std::chrono::seconds defaultPatience{8};

  explicit DiskWatch(QObject* parent = nullptr,
                     std::chrono::milliseconds patience = defaultPatience);
  ~DiskWatch() override;

  // Has a look at a backup soon, however often it is asked meanwhile. From any thread.
  void suspect(const std::string& backup);

  // Lives on a thread that reads from a backup, for as long as that takes.
  class Waiting {
  public:
    Waiting(DiskWatch& watch, const std::string& backup);
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
    ~Waiting();

  private:
    friend class DiskWatch;

    DiskWatch& m_watch;
    const std::string& m_backup;
    const std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
    std::list<const Waiting*>::iterator m_place;
  };

signals:
  void looked(const std::string& backup, bool canBeRead);
  // `backup` is one that somebody has been waiting for in vain; empty: no more.
  void isSilent(const std::string& backup);
  void disksChanged();

private:
  void lookAtSuspects(const std::stop_token& stop);
  void lookForSilence();

  const std::chrono::milliseconds m_patience;
  FileDescriptor m_mounts;
  std::mutex m_mutex;
  std::condition_variable_any m_wakeUp;
  std::set<std::string> m_suspects;
  std::list<const Waiting*> m_waiting;  // the first since the longest time
  std::atomic<bool> m_isTimed = false;  // lookForSilence() will be called
  QTimer m_timer{this};
  std::string m_silent;   // what was told last
  std::jthread m_thread;  // the last member: it is joined before all else goes
};

}  // namespace snaplift
