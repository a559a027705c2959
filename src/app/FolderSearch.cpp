#include "app/FolderSearch.h"

#include <utility>

namespace snaplift {
namespace {

constexpr int tellingIntervalInMilliseconds = 100;

}  // namespace

FolderSearch::FolderSearch(Events events) : m_events(std::move(events)) {
  m_timer.setInterval(tellingIntervalInMilliseconds);
  connect(&m_timer, &QTimer::timeout, this, &FolderSearch::tell);
}

FolderSearch::~FolderSearch() {
  m_thread.request_stop();
}

void FolderSearch::search(const std::string& folder) {
  m_folders.push_back(folder);
  if (m_folders.size() == 1) {
    startNext();
  }
}

void FolderSearch::stop() {
  m_thread.request_stop();
  if (m_folders.size() > 1) {
    m_folders.resize(1);
  }
}

void FolderSearch::startNext() {
  m_isOver = false;
  m_timer.start();
  m_thread = std::jthread([this, folder = m_folders.front()](std::stop_token stop) {
    const BackupSearchResult result =
        searchForBackups({folder},
                         {.found =
                              [this](std::unique_ptr<BackupModel> backup) {
                                const std::lock_guard lock(m_mutex);
                                m_found.push_back(std::move(backup));
                              },
                          .looking =
                              [this](const std::string& place) {
                                const std::lock_guard lock(m_mutex);
                                m_place = place;
                              }},
                         stop);
    const std::lock_guard lock(m_mutex);
    m_result = result;
    m_isOver = true;
  });
}

void FolderSearch::tell() {
  std::unique_lock lock(m_mutex);
  auto found = std::exchange(m_found, {});
  const std::string place = m_place;
  const BackupSearchResult result = m_result;
  const bool isOver = m_isOver;
  lock.unlock();
  const std::string folder = m_folders.front();
  if (!found.empty()) {
    m_events.found(folder, std::move(found));
  }
  if (!isOver) {
    m_events.looking(place);
    return;
  }
  const bool wasStopped = m_thread.get_stop_token().stop_requested();
  m_folders.pop_front();
  if (m_folders.empty()) {
    m_timer.stop();
  } else {
    startNext();
  }
  m_events.ended(folder, result, wasStopped);
}

}  // namespace snaplift
