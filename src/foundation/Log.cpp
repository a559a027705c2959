#include "foundation/Log.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
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

// The bytes of the UTF-8 character at the beginning of `text`; 1 for a byte that begins none.
std::size_t characterLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t length = first < 0xC2 || first > 0xF4 ? 1
                             : first < 0xE0               ? 2
                             : first < 0xF0               ? 3
                                                          : 4;
  const std::string_view rest = text.substr(1, length - 1);
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  return rest.size() == length - 1 && std::ranges::all_of(rest, continues) ? length : 1;
}

// U+0080 to U+009F, as the second byte of their UTF-8 or as the one byte of older encodings:
// terminals take 0x9B for the beginning of a command, like ESC and "[".
bool isLatterControl(char c) {
  return (static_cast<unsigned char>(c) & 0xE0) == 0x80;
}

void appendEscaped(std::string& text, char c) {
  const auto byte = static_cast<unsigned char>(c);
  switch (c) {
    case '\n':
      text += "\\n";
      break;
    case '\r':
      text += "\\r";
      break;
    case '\t':
      text += "\\t";
      break;
    case '\\':
      text += "\\\\";
      break;
    default:
      if (byte < 0x20 || byte == 0x7F || isLatterControl(c)) {
        constexpr char digits[] = "0123456789abcdef";
        text += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
      } else {
        text += c;
      }
  }
}

}  // namespace

UnseenCharacter unseenCharacterAt(std::string_view text) {
  if (text.starts_with('\x7f')) {
    return {0x7F, 1};
  }
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]) & 0x3Fu; };
  const std::size_t length = text.empty() ? 0 : characterLength(text);
  const unsigned character = length == 2   ? (byte(0) & 0x1F) << 6 | byte(1)
                             : length == 3 ? (byte(0) & 0x0F) << 12 | byte(1) << 6 | byte(2)
                                           : 0;
  const auto isBetween = [&](unsigned first, unsigned last) {
    return character >= first && character <= last;
  };
  const bool isUnseen = isBetween(0x80, 0x9F) || character == 0x061C || isBetween(0x200E, 0x200F) ||
                        isBetween(0x2028, 0x202E) || isBetween(0x2066, 0x2069);
  return isUnseen ? UnseenCharacter{character, length} : UnseenCharacter{};
}

std::string escapedForLog(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    if (length == 1) {
      appendEscaped(escaped, text.front());
    } else if (const unsigned unseen = unseenCharacterAt(text).character; unseen >= 0x100) {
      char escape[16];
      std::snprintf(escape, sizeof escape, "\\u%04x", unseen);
      escaped += escape;
    } else if (unseen > 0) {
      appendEscaped(escaped, text[1]);
    } else {
      escaped += text.substr(0, length);
    }
    text.remove_prefix(length);
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
