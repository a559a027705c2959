#include "library/FileNameReservation.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <unordered_set>

namespace snaplift {
namespace {

struct Reservations {
  std::mutex mutex;
  std::condition_variable released;
  std::unordered_set<std::string> names;
};

// Never destroyed: exporting threads may outlive the static objects of the process.
Reservations& reservations() {
  static auto& all = *new Reservations;
  return all;
}

}  // namespace

FileNameReservation::FileNameReservation(std::string_view name) : m_name(name) {
  std::ranges::transform(m_name, m_name.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  Reservations& all = reservations();
  std::unique_lock lock(all.mutex);
  all.released.wait(lock, [&] { return all.names.insert(m_name).second; });
}

FileNameReservation::~FileNameReservation() {
  Reservations& all = reservations();
  {
    const std::lock_guard lock(all.mutex);
    all.names.erase(m_name);
  }
  all.released.notify_all();
}

}  // namespace snaplift
