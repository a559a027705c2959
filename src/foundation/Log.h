#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace snaplift {

// The system log: one line per message on the standard error stream, without levels or a prefix.
// Desktop sessions and terminals both collect it from there. A line goes out in one write, so that
// lines of several threads never mix. Control characters and line breaks of the message are escaped
// (see escapedForLog): names come from backups, and no name may forge a line.
void systemLog(std::string_view message);

// `text` with each control character (below 0x20, and 0x7F to 0x9F, of which a terminal obeys 0x9B
// like an escape) as "\n", "\t", "\r" or "\x1b", other unseen characters as "\u202e", a backslash
// as
// "\\", and everything else as it is, bytes that are no UTF-8 included.
std::string escapedForLog(std::string_view text);

// A character that is no mark on the screen but commands a terminal, ends a line or turns the
// direction of what follows: U+007F to U+009F, U+2028 and U+2029, and the direction marks.
struct UnseenCharacter {
  unsigned character = 0;
  std::size_t length = 0;  // in bytes of UTF-8; 0: there is none
};
// The one that `text` begins with.
UnseenCharacter unseenCharacterAt(std::string_view text);

// Sends the lines (escaped, without a line end) to `sink` instead, for as long as this object
// lives; tests read the log with it. The sink is called on the logging thread, one call at a time.
// Objects end in the reverse order of their making.
class LogCapture {
public:
  using Sink = std::function<void(std::string line)>;
  explicit LogCapture(Sink sink);
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  ~LogCapture();

private:
  Sink m_outer;
};

}  // namespace snaplift
