#include "cli/Completion.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include <CLI/CLI.hpp>

#include "backups/BackupController.h"
#include "cli/Output.h"
#include "foundation/Log.h"
#include "foundation/files/Path.h"

namespace snaplift::cli {
namespace {

// A name that would have to be escaped cannot be typed, and is none of the candidates.
void printCandidate(const std::string& candidate, std::string_view what) {
  if (!candidate.empty() && escapedForLog(candidate) == candidate) {
    printText(candidate + "\t" + escapedForLog(what) + "\n");
  }
}

void printFolders() {
  printText("/\n");
}

void printFiles() {
  printText("*\n");
}

// The words of "photos|all".
void printChoices(std::string_view choices) {
  while (!choices.empty()) {
    const std::string_view choice = choices.substr(0, choices.find('|'));
    printCandidate(std::string(choice), "");
    choices.remove_prefix(std::min(choice.size() + 1, choices.size()));
  }
}

void printOptions(const CLI::App& command) {
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      printCandidate("--" + name, option->get_description());
    }
  }
}

void printCommands(const CLI::App& app) {
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    printCandidate(command->get_name(), command->get_description());
  }
}

const CLI::App* commandNamed(const CLI::App& app, const std::string& name) {
  const auto found =
      app.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

// The root that the words name, as they come from a shell that has not yet expanded them.
std::string rootOf(const std::vector<std::string>& words) {
  constexpr std::string_view names[] = {"-r", "--root"};
  const auto option = std::ranges::find_first_of(words, names);
  if (words.end() - option < 2) {
    return defaultBackupRoot();
  }
  std::string root = *std::next(option);
  const char* home = std::getenv("HOME");
  return home && root.starts_with("~/") ? root.replace(0, 1, home) : root;
}

void printDevices(const BackupController& root) {
  for (const auto& device : root.devices()) {
    printCandidate(device->name().value_or(""), countText(device->backups().size(), "backup"));
  }
}

void printBackups(const BackupController& root) {
  printCandidate("latest", "The newest backup");
  for (const auto& device : root.devices()) {
    for (const auto& backup : device->backups()) {
      printCandidate(std::string(lastPathComponent(backup->path())),
                     device->title() + ", " + device->titleOfBackup(*backup));
    }
  }
}

bool beginsPath(const std::string& word) {
  return word.starts_with('.') || word.starts_with('~') || word.find('/') != std::string::npos;
}

// What the last word is, in the words of the help text: "FOLDER", "BACKUP" and so on.
std::string kindOfLastWord(const CLI::App& command, const std::vector<std::string>& words) {
  const CLI::Option* before = command.get_option_no_throw(words[words.size() - 2]);
  if (before && before->nonpositional() && before->get_items_expected_max() > 0) {
    return before->get_type_name();
  }
  const auto places =
      command.get_options([](const CLI::Option* option) { return option->get_positional(); });
  return places.empty() ? "" : places.front()->get_name();
}

}  // namespace

ExitStatus complete(const CLI::App& app, const std::vector<std::string>& words) {
  const LogCapture silence([](const std::string&) {});
  if (words.size() < 2) {
    printCommands(app);
    printOptions(app);
    return Done;
  }
  const CLI::App* command = commandNamed(app, words.front());
  if (!command) {
    return UsageError;
  }
  const std::string& word = words.back();
  const std::string kind = kindOfLastWord(*command, words);
  if (word.starts_with('-')) {
    printOptions(*command);
  } else if (kind == "FOLDER" || (kind == "BACKUP" && beginsPath(word))) {
    printFolders();
  } else if (kind == "FILE" || kind == "REPORT") {
    printFiles();
  } else if (kind.find('|') != std::string::npos) {
    printChoices(kind);
  } else if (kind == "NAME" || kind == "BACKUP") {
    const BackupController root(rootOf(words));
    if (kind == "NAME") {
      printDevices(root);
    } else if (root.devices().empty()) {
      printFolders();
    } else {
      printBackups(root);
    }
  }
  return Done;
}

}  // namespace snaplift::cli
