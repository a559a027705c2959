#pragma once

#include <string>
#include <vector>

#include "cli/ExitStatus.h"

namespace CLI {
class App;
}

namespace snaplift::cli {

// What comes before the words of a command line in a call of this program by a shell's completion.
inline constexpr const char* completionCommand = "complete";

// What can stand in the place of the last word, after those before it: a candidate a line, a tab,
// and what it is. A line that is a slash and nothing else stands for the shell's own candidates,
// the folders; one that is an asterisk, for files as well. The shell keeps those that begin as the
// last word does.
//
// Options, and what follows them, are those that `app` parses: an option is completed as soon as
// there is one. Backups and devices are those of the root that the words name, else of the user's.
ExitStatus complete(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace snaplift::cli
