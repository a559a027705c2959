#include "cli/ProgressBar.h"

#include <cstdio>
#include <string>

#include <unistd.h>

#include "cli/Output.h"

namespace snaplift::cli {
namespace {

constexpr int barWidth = 32;
constexpr auto drawInterval = std::chrono::milliseconds(100);
constexpr const char* clearLine = "\r\x1b[K";

}  // namespace

ProgressBar::ProgressBar(std::uint64_t total)
    : m_total(total), m_visible(total > 0 && ::isatty(STDERR_FILENO)) {}

ProgressBar::~ProgressBar() {
  if (m_visible) {
    std::fputs(clearLine, stderr);
  }
}

void ProgressBar::advance(std::uint64_t bytes) {
  const std::lock_guard lock(m_mutex);
  ++m_done;
  m_bytes += bytes;
  const auto now = std::chrono::steady_clock::now();
  if (m_visible && (m_done == m_total || now - m_lastDrawn >= drawInterval)) {
    m_lastDrawn = now;
    draw();
  }
}

void ProgressBar::draw() {
  const auto filled = static_cast<std::size_t>(barWidth * m_done / m_total);
  std::fprintf(stderr, "%s[%s%s] %s of %s, %s", clearLine, std::string(filled, '#').c_str(),
               std::string(barWidth - filled, ' ').c_str(), countText(m_done).c_str(),
               countText(m_total, "photo").c_str(), sizeText(m_bytes).c_str());
}

}  // namespace snaplift::cli
