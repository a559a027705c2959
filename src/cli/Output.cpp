#include "cli/Output.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "foundation/Log.h"

namespace snaplift::cli {
namespace {

constexpr const char* messagePrefix = "snaplift-cli: ";

bool quietIsWanted = false;
int outputError = 0;  // of the first write to the standard output that failed

void write(std::string_view text) {
  // The count that fwrite answers says nothing of a line that could not be flushed.
  std::fwrite(text.data(), 1, text.size(), stdout);
  if (std::ferror(stdout) && outputError == 0) {
    outputError = errno;
  }
}

bool outputHasColour() {
  const char* noColour = std::getenv("NO_COLOR");
  return ::isatty(STDOUT_FILENO) && !(noColour && *noColour);
}

}  // namespace

void occupyStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) < 0) {
      ::open("/dev/null", O_RDONLY);  // takes the lowest free number; a write to it still fails
    }
  }
}

void printLinesAtOnce() {
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

Json jsonText(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json(nullptr);
}

std::string jsonLineText(const Json& value) {
  const std::string json = value.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string text;
  text.reserve(json.size());
  // What JSON lets stand and terminals obey.
  for (std::string_view rest = json; !rest.empty();) {
    const UnseenCharacter unseen = unseenCharacterAt(rest);
    if (unseen.length > 0) {
      char escape[16];
      std::snprintf(escape, sizeof escape, "\\u%04x", unseen.character);
      text += escape;
    } else {
      text += rest.front();
    }
    rest.remove_prefix(std::max<std::size_t>(unseen.length, 1));
  }
  return text;
}

void printJsonPart(std::string_view part) {
  write(part);
}

void printJson(const Json& value) {
  write(jsonLineText(value) + "\n");
}

void printLine(std::string_view line) {
  write(escapedForLog(line) + "\n");
}

void printHeading(std::string_view heading) {
  const bool colour = outputHasColour();
  write((colour ? "\x1b[1m" : "") + escapedForLog(heading) + (colour ? "\x1b[0m\n" : "\n"));
}

void printText(std::string_view text) {
  write(text);
}

void beQuiet() {
  // Messages go the way of the log; a name in a line of the log cannot stand at its beginning.
  static const LogCapture quiet([](const std::string& line) {
    if (line.starts_with(messagePrefix)) {
      std::fputs((line + "\n").c_str(), stderr);
    }
  });
  quietIsWanted = true;
}

bool isQuiet() {
  return quietIsWanted;
}

void printNote(std::string_view note) {
  if (!quietIsWanted) {
    printMessage(note);
  }
}

void printMessage(std::string_view message) {
  systemLog(messagePrefix + std::string(message));
}

std::string countText(std::uint64_t count) {
  std::string digits = std::to_string(count);
  for (std::size_t i = digits.size(); i > 3; i -= 3) {
    digits.insert(i - 3, 1, ',');
  }
  return digits;
}

std::string countText(std::uint64_t count, std::string_view thing) {
  return countText(count) + " " + std::string(thing) + (count == 1 ? "" : "s");
}

std::string rareCountText(std::uint64_t count, std::string_view what) {
  return count == 0 ? "" : ", " + countText(count) + " " + std::string(what);
}

std::string sizeText(std::uint64_t bytes) {
  constexpr std::array units = {"bytes", "kB", "MB", "GB", "TB"};
  auto value = static_cast<double>(bytes);
  std::size_t unit = 0;
  for (; value >= 999.95 && unit + 1 < units.size(); ++unit) {
    value /= 1000;
  }
  char text[32];
  std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", value, units[unit]);
  return text;
}

bool flushOutput() {
  if (outputError == 0 && std::fflush(stdout) != 0) {
    outputError = errno;
  }
  if (outputError != 0) {
    printMessage("the output is not complete: " + std::generic_category().message(outputError));
  }
  return outputError == 0;
}

}  // namespace snaplift::cli
