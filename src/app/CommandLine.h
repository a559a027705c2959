#pragma once

#include <optional>
#include <string>
#include <vector>

namespace snaplift {

// The window's command line: "snaplift [--no-state] [FOLDER...]". Folders are byte strings as the
// system gives them. Options of the toolkit ("-platform", "-style" ...) are left to it.

// What the program answers at once, without a display.
struct CommandLineAnswer {
  std::string text;
  int status;  // 0, or 2 for a command line that is wrong
};

// The answer to "--help", "--version" or an unknown option; nothing where a window is wanted.
std::optional<CommandLineAnswer> answerOfCommandLine(const std::vector<std::string>& arguments);

struct WindowArguments {
  std::vector<std::string> folders;
  bool keepsState = true;
};

// To be asked when the toolkit has taken its own options away.
WindowArguments windowArguments(const std::vector<std::string>& arguments);

}  // namespace snaplift
