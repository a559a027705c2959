#include "cli/Output.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

#include "foundation/Log.h"

namespace snaplift::cli {
namespace {

void write(std::FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

bool outputHasColour() {
  const char* noColour = std::getenv("NO_COLOR");
  return ::isatty(STDOUT_FILENO) && !(noColour && *noColour);
}

}  // namespace

Json jsonText(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json(nullptr);
}

void printJson(const Json& value) {
  write(stdout, value.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
}

void printLine(std::string_view line) {
  write(stdout, escapedForLog(line) + "\n");
}

void printHeading(std::string_view heading) {
  const bool colour = outputHasColour();
  write(stdout, (colour ? "\x1b[1m" : "") + escapedForLog(heading) + (colour ? "\x1b[0m\n" : "\n"));
}

void printMessage(std::string_view message) {
  systemLog("snaplift-cli: " + std::string(message));
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
  return std::fflush(stdout) == 0 && !std::ferror(stdout);
}

}  // namespace snaplift::cli
