#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "backups/BackupSearch.h"
#include "foundation/Sentence.h"

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
  struct Search {
    std::string folder;
    bool wasAskedFor = false;  // by the user, now
  };
  struct Outcome {
    BackupSearchResult result;
    bool wasStopped = false;
    std::optional<Sentence> problem;  // why the folder itself cannot be read now
  };
  struct Events {
    // Backups in or below the folder, each batch as it comes.
    std::function<void(const Search&, std::vector<std::unique_ptr<BackupModel>>)> found;
    // Where the search is; and that it has been there for long without an answer.
    std::function<void(const std::string& folder, bool isSilent)> looking;
    // A search is over, or was stopped.
    std::function<void(const Search&, const Outcome&)> ended;
  };
  static constexpr std::chrono::seconds defaultPatience{8};

  explicit FolderSearch(Events events, std::chrono::milliseconds patience = defaultPatience);
  ~FolderSearch() override;

  // Searches a folder, or the folder around a file of a backup, when those before it are done.
  void search(const Search& search);
  // Ends the search and drops what waits; what was found so far is still told.
  void stop();
  // What is searched and what waits.
  const std::deque<Search>& searches() const { return m_searches; }
  // Whether something is searched or has yet to be told.
  bool isRunning() const { return m_timer.isActive(); }

private:
  void startNext();
  Outcome searchFirst(std::string folder, const std::stop_token& stop);
  void tell();

  const Events m_events;
  const std::chrono::milliseconds m_patience;
  QTimer m_timer;
  std::deque<Search> m_searches;  // the first is at work
  std::mutex m_mutex;             // for what follows
  std::string m_folder;           // that is meant by the first
  std::vector<std::unique_ptr<BackupModel>> m_found;
  std::string m_place;
  std::chrono::steady_clock::time_point m_arrival;  // there
  std::optional<Outcome> m_outcome;
  std::jthread m_thread;  // the last member: it is joined before all else goes
};

}  // namespace snaplift
