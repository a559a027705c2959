#pragma once

#include <QObject>
#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "foundation/files/FileDescriptor.h"

namespace snaplift {

// Finds out whether a backup that is open can still be read: its disk may have been taken out, or
// fail. Nothing is asked again and again, so that a disk at rest stays at rest: somebody has to
// suspect a backup. That a disk came or went is told, too, where the system tells it (Linux does).
//
// Looks on a thread of its own, since a dying disk takes its time; tells on the user interface's.
class DiskWatch : public QObject {
  Q_OBJECT

public:
  explicit DiskWatch(QObject* parent = nullptr);
  ~DiskWatch() override;

  // Has a look at a backup soon, however often it is asked meanwhile. From any thread.
  void suspect(const std::string& backup);

signals:
  void looked(const std::string& backup, bool canBeRead);
  void disksChanged();

private:
  void lookAtSuspects(const std::stop_token& stop);

  FileDescriptor m_mounts;
  std::mutex m_mutex;
  std::condition_variable_any m_wakeUp;
  std::set<std::string> m_suspects;
  std::jthread m_thread;  // the last member: it is joined before all else goes
};

}  // namespace snaplift
