#include "foundation/Log.h"

#include <cerrno>
#include <mutex>
#include <utility>

#include <unistd.h>

namespace snaplift {
namespace {

std::mutex logMutex;

void writeToStandardError(std::string line) {
  line.push_back('\n');
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t count = ::write(STDERR_FILENO, rest.data(), rest.size());
    if (count < 0 && errno != EINTR) {
      return;  // there is nowhere left to complain to
    }
    rest.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
  }
}

LogCapture::Sink& currentSink() {
  static LogCapture::Sink sink = writeToStandardError;
  return sink;
}

}  // namespace

std::string escapedForLog(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    switch (c) {
      case '\n':
        escaped += "\\n";
        break;
      case '\r':
        escaped += "\\r";
        break;
      case '\t':
        escaped += "\\t";
        break;
      case '\\':
        escaped += "\\\\";
        break;
      default:
        if (byte < 0x20 || byte == 0x7F) {
          constexpr char digits[] = "0123456789abcdef";
          escaped += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
        } else {
          escaped += c;
        }
    }
  }
  return escaped;
}

void systemLog(std::string_view message) {
  std::string line = escapedForLog(message);
  const std::lock_guard lock(logMutex);
  currentSink()(std::move(line));
}

LogCapture::LogCapture(Sink sink) {
  const std::lock_guard lock(logMutex);
  m_outer = std::exchange(currentSink(), std::move(sink));
}

LogCapture::~LogCapture() {
  const std::lock_guard lock(logMutex);
  currentSink() = std::move(m_outer);
}

}  // namespace snaplift
