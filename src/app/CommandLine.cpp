#include "app/CommandLine.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "foundation/Log.h"

namespace snaplift {
namespace {

constexpr std::string_view noState = "--no-state";

// Of the toolkit, with one dash or two: those that a value follows, and the one that stands alone.
constexpr std::array<std::string_view, 14> optionsWithValue = {
    "platform",        "platformpluginpath",
    "platformtheme",   "plugin",
    "style",           "stylesheet",
    "qwindowgeometry", "qwindowicon",
    "qwindowtitle",    "display",
    "geometry",        "name",
    "session",         "icon"};
constexpr std::string_view optionAlone = "reverse";

bool isOption(std::string_view argument) {
  return argument.size() > 1 && argument.front() == '-';
}

}  // namespace

std::optional<CommandLineAnswer> answerOfCommandLine(const std::vector<std::string>& arguments) {
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    if (*argument == "--") {
      break;
    }
    if (*argument == "--help" || *argument == "-h") {
      return CommandLineAnswer{
          "usage: snaplift [--no-state] [FOLDER...]\n\n"
          "Shows the photos in the backups of old handsets, and copies them out: the user's own\n"
          "backups, and those in or below each FOLDER.\n\n"
          "  --no-state  remember nothing of this window, and nothing of those before\n"
          "  -h, --help  print this help and exit\n"
          "  --version   print the version and exit\n",
          0};
    }
    if (*argument == "--version") {
      return CommandLineAnswer{"snaplift " SNAPLIFT_VERSION "\n", 0};
    }
    if (!isOption(*argument) || *argument == noState) {
      continue;
    }
    std::string_view name = *argument;
    name.remove_prefix(name.starts_with("--") ? 2 : 1);
    const bool hasValue = name.find('=') != std::string_view::npos;
    name = name.substr(0, name.find('='));
    if (std::ranges::find(optionsWithValue, name) != optionsWithValue.end()) {
      argument += !hasValue && argument + 1 != arguments.end() ? 1 : 0;
    } else if (name != optionAlone) {
      return CommandLineAnswer{
          "snaplift: unknown option: " + escapedForLog(*argument) + "; see snaplift --help\n", 2};
    }
  }
  return std::nullopt;
}

WindowArguments windowArguments(const std::vector<std::string>& arguments) {
  WindowArguments window;
  bool mayBeOption = true;
  for (const std::string& argument : arguments) {
    if (mayBeOption && argument == "--") {
      mayBeOption = false;
    } else if (mayBeOption && argument == noState) {
      window.keepsState = false;
    } else {
      window.folders.push_back(argument);
    }
  }
  return window;
}

}  // namespace snaplift
