#include "cli/ProgressBar.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include <unistd.h>

#include "cli/Output.h"

namespace snaplift::cli {
namespace {

// With the counts of a large export the line stays below the 80 columns of a small terminal.
constexpr std::size_t barWidth = 32;
constexpr auto drawInterval = std::chrono::milliseconds(100);
// After a line that was printed in its place: lines of small photos come faster than anybody reads.
constexpr auto drawAgainInterval = std::chrono::milliseconds(10);

}  // namespace

ProgressBar::ProgressBar(std::uint64_t total)
    : m_total(total), m_visible(total > 0 && !isQuiet() && ::isatty(STDERR_FILENO)) {}

void ProgressBar::advance(std::uint64_t bytes) {
  ++m_done;
  m_bytes += bytes;
  const auto now = std::chrono::steady_clock::now();
  const auto interval = m_drawnWidth == 0 ? drawAgainInterval : drawInterval;
  if (m_visible && (m_done == m_total || now - m_lastDrawn >= interval)) {
    m_lastDrawn = now;
    draw();
  }
}

void ProgressBar::hide() {
  if (m_drawnWidth > 0) {
    std::fputs(("\r" + std::string(m_drawnWidth, ' ') + "\r").c_str(), stderr);
    m_drawnWidth = 0;
  }
}

void ProgressBar::draw() {
  const auto filled = static_cast<std::size_t>(barWidth * m_done / m_total);
  std::string line = "[" + std::string(filled, '#') + std::string(barWidth - filled, ' ') + "] " +
                     countText(m_done) + " of " + countText(m_total, "photo") + ", " +
                     sizeText(m_bytes);
  const std::size_t width = line.size();
  line.resize(std::max(width, m_drawnWidth), ' ');  // over what is left of a longer one
  std::fputs(("\r" + line).c_str(), stderr);
  m_drawnWidth = width;
}

}  // namespace snaplift::cli
