#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>

namespace snaplift::cli {

// The progress of an export on one line of the standard error: only where that is a terminal, and
// nothing at all elsewhere. Redrawn ten times a second at most. Any thread may advance it.
class ProgressBar {
public:
  explicit ProgressBar(std::uint64_t total);
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;
  // Takes the line away.
  ~ProgressBar();

  void advance(std::uint64_t bytes);

private:
  void draw();

  const std::uint64_t m_total;
  const bool m_visible;
  std::mutex m_mutex;
  std::uint64_t m_done = 0;
  std::uint64_t m_bytes = 0;
  std::chrono::steady_clock::time_point m_lastDrawn;
};

}  // namespace snaplift::cli
