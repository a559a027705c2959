#pragma once

#include <QObject>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "backups/BackupSearch.h"

namespace snaplift {

// Searches folders for backups on one thread of its own, one folder after the other, and tells on
// the user interface's thread what has come, some ten times a second: a search looks into thousands
// of folders in that time, and nobody reads faster.
//
// The destructor stops the search and waits for its thread, which a disk that does not answer may
// delay.
class FolderSearch : public QObject {
  Q_OBJECT

public:
  struct Events {
    // Backups in or below `folder`, each batch as it comes.
    std::function<void(const std::string& folder, std::vector<std::unique_ptr<BackupModel>>)> found;
    // Where the search is.
    std::function<void(const std::string& folder)> looking;
    // The search of `folder` is over, or was stopped.
    std::function<void(const std::string& folder, const BackupSearchResult&, bool stopped)> ended;
  };

  explicit FolderSearch(Events events);
  ~FolderSearch() override;

  // Searches `folder` when those before it are done.
  void search(const std::string& folder);
  // Ends the search and drops what waits; what was found so far is still told.
  void stop();
  // What is searched and what waits.
  const std::deque<std::string>& folders() const { return m_folders; }
  // Whether something is searched or has yet to be told.
  bool isRunning() const { return m_timer.isActive(); }

private:
  void startNext();
  void tell();

  const Events m_events;
  QTimer m_timer;
  std::deque<std::string> m_folders;  // the first is searched now
  std::mutex m_mutex;                 // for what follows
  std::vector<std::unique_ptr<BackupModel>> m_found;
  std::string m_place;
  BackupSearchResult m_result;
  bool m_isOver = false;
  std::jthread m_thread;  // the last member: it is joined before all else goes
};

}  // namespace snaplift
