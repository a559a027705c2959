#include "app/FolderSearch.h"

#include <utility>

#include "backups/BackupPlaces.h"

namespace snaplift {
namespace {

constexpr int tellingIntervalInMilliseconds = 100;

}  // namespace

FolderSearch::FolderSearch(Events events, std::chrono::milliseconds patience)
    : m_events(std::move(events)), m_patience(patience) {
  m_timer.setInterval(tellingIntervalInMilliseconds);
  connect(&m_timer, &QTimer::timeout, this, &FolderSearch::tell);
}

FolderSearch::~FolderSearch() {
  m_thread.request_stop();
}

void FolderSearch::search(const Search& search) {
  m_searches.push_back(search);
  if (m_searches.size() == 1) {
    startNext();
  }
}

void FolderSearch::stop() {
  m_thread.request_stop();
  if (m_searches.size() > 1) {
    m_searches.resize(1);
  }
}

void FolderSearch::startNext() {
  m_outcome.reset();
  m_folder = m_place = m_searches.front().folder;
  m_arrival = std::chrono::steady_clock::now();
  m_timer.start();
  m_thread = std::jthread([this, folder = m_folder](const std::stop_token& stop) {
    Outcome outcome = searchFirst(folder, stop);
    const std::lock_guard lock(m_mutex);
    m_outcome = std::move(outcome);
  });
}

// All that the disk is asked: it may not answer.
FolderSearch::Outcome FolderSearch::searchFirst(std::string folder, const std::stop_token& stop) {
  folder = folderMeantBy(std::move(folder));
  {
    const std::lock_guard lock(m_mutex);
    m_folder = folder;
  }
  Outcome outcome;
  outcome.result = searchForBackups({folder},
                                    {.found =
                                         [this](std::unique_ptr<BackupModel> backup) {
                                           const std::lock_guard lock(m_mutex);
                                           m_found.push_back(std::move(backup));
                                         },
                                     .looking =
                                         [this](const std::string& place) {
                                           const std::lock_guard lock(m_mutex);
                                           m_place = place;
                                           m_arrival = std::chrono::steady_clock::now();
                                         }},
                                    stop);
  outcome.wasStopped = stop.stop_requested();
  if (!outcome.wasStopped) {
    outcome.problem = whyFolderCannotBeRead(folder);
  }
  return outcome;
}

void FolderSearch::tell() {
  std::unique_lock lock(m_mutex);
  auto found = std::exchange(m_found, {});
  const Search search{m_folder, m_searches.front().wasAskedFor};
  const std::string place = m_place;
  const bool isSilent = std::chrono::steady_clock::now() - m_arrival >= m_patience;
  const std::optional<Outcome> outcome = m_outcome;
  lock.unlock();
  if (!found.empty()) {
    m_events.found(search, std::move(found));
  }
  if (!outcome) {
    if (!m_thread.get_stop_token().stop_requested()) {
      m_events.looking(place, isSilent);
    }
    return;
  }
  m_searches.pop_front();
  if (m_searches.empty()) {
    m_timer.stop();
  } else {
    startNext();
  }
  m_events.ended(search, *outcome);
}

}  // namespace snaplift
