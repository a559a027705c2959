#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace snaplift::cli {

// The progress of an export on one line of the standard error: only where that is a terminal, and
// nothing at all elsewhere. Redrawn ten times a second at most, or a hundred where other lines are
// printed in its place, without a command that a terminal might not know. One thread at a time.
class ProgressBar {
public:
  explicit ProgressBar(std::uint64_t total);
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;
  // Takes the line away.
  ~ProgressBar() { hide(); }

  void advance(std::uint64_t bytes);

  // Takes the line away until the next advance(), so that another can be printed there.
  void hide();

private:
  void draw();

  const std::uint64_t m_total;
  const bool m_visible;
  std::uint64_t m_done = 0;
  std::uint64_t m_bytes = 0;
  std::size_t m_drawnWidth = 0;  // in columns; 0: there is no line
  std::chrono::steady_clock::time_point m_lastDrawn;
};

}  // namespace snaplift::cli
