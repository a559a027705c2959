#include <exception>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/Commands.h"
#include "cli/Output.h"

namespace snaplift::cli {
namespace {

constexpr const char* introduction =
    "Examples:\n"
    "  snaplift-cli list                         the devices and backups of this user\n"
    "  snaplift-cli photos BACKUP                the photos of one backup\n"
    "  snaplift-cli check                        are all listed photos there?\n"
    "  snaplift-cli export BACKUP -o ~/Pictures  copy every photo out\n"
    "  snaplift-cli export --device \"Anna's Phone\" -o ~/Pictures\n"
    "\n"
    "Gets photos back out of the backups of old handsets (system versions 1 to 9).\n"
    "Backups are only read, never written. A BACKUP is the folder of one backup, a\n"
    "root is a folder of such folders.\n";

constexpr const char* exitStatuses =
    "\nExit status: 0 done, 1 failed, 2 usage, 3 some photos missing or failed,\n"
    "10 no such root or backup, 12 encrypted (nothing is exported), 130 interrupted.";

struct Arguments {
  std::optional<std::string> path;
  std::string backup;
  bool json = false;
  ExportOptions exporting;
};

CLI::App* addCommand(CLI::App& app, Arguments& arguments, const char* name, const char* purpose) {
  CLI::App* command = app.add_subcommand(name, purpose)->group("Commands");
  command->add_flag("--json", arguments.json, "Print JSON, one value a line");
  return command;
}

CLI::App* addRootCommand(CLI::App& app, Arguments& arguments, const char* name,
                         const char* purpose) {
  CLI::App* command = addCommand(app, arguments, name, purpose);
  command->add_option("PATH", arguments.path, "A backup root or one backup (default: your root)")
      ->type_name("");
  return command;
}

CLI::App* addBackupCommand(CLI::App& app, Arguments& arguments, const char* name,
                           const char* purpose) {
  CLI::App* command = addCommand(app, arguments, name, purpose);
  command->add_option("BACKUP", arguments.backup, "The folder of one backup")
      ->type_name("")
      ->required();
  return command;
}

CLI::App* addExportCommand(CLI::App& app, Arguments& arguments) {
  ExportOptions& options = arguments.exporting;
  CLI::App* command =
      addCommand(app, arguments, "export", "Copy photos into a folder; nothing is ever replaced");
  command->add_option("BACKUP", options.paths, "Folders of backups, or backup roots")
      ->type_name("");
  command->add_option("-o,--output", options.destination, "The folder that receives the photos")
      ->type_name("FOLDER")
      ->required();
  command->add_option("-d,--device", options.deviceNames, "All backups of the device of this name")
      ->type_name("NAME")
      ->allow_extra_args(false);  // each time one name: what follows is a BACKUP
  command->add_option("-r,--root", options.root, "The root of those devices (default: your root)")
      ->type_name("FOLDER");
  command->add_option("-j,--jobs", options.workers, "Photos in hand at once (default: one a core)")
      ->type_name("NUMBER")
      ->check(CLI::Range(1, 256).description(""));
  command->add_flag("-n,--dry-run", options.dryRun, "Read every photo, write nothing");
  return command;
}

// Errors quote arguments, which are names of files often enough: no escape of theirs gets out.
ExitStatus usageError(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<CLI::App*> commands = app.get_subcommands();
  if (commands.empty()) {
    printMessage("name a command: list, photos, files, check or export; see snaplift-cli --help");
  } else {
    printMessage(std::string(error.what()) + "; see snaplift-cli " + commands[0]->get_name() +
                 " --help");
  }
  return UsageError;
}

ExitStatus run(int argc, char** argv) {
  CLI::App app(introduction, "snaplift-cli");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.set_version_flag("--version", "snaplift-cli " SNAPLIFT_VERSION, "Print the version and exit");
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.get_formatter()->label("REQUIRED", "(required)");
  app.get_formatter()->column_width(34);
  app.require_subcommand(1);
  app.footer(exitStatuses);
  Arguments arguments;
  CLI::App* list = addRootCommand(app, arguments, "list", "List devices and backups, newest first");
  CLI::App* photos = addBackupCommand(app, arguments, "photos", "List the photos of one backup");
  CLI::App* files = addBackupCommand(app, arguments, "files", "List the files of one backup");
  CLI::App* check =
      addRootCommand(app, arguments, "check", "Count the listed, present and missing photos");
  CLI::App* exporting = addExportCommand(app, arguments);
  try {
    app.parse(argc, argv);
    if (exporting->parsed() && arguments.exporting.paths.empty() &&
        arguments.exporting.deviceNames.empty()) {
      throw CLI::RequiredError("BACKUP or --device");
    }
  } catch (const CLI::Success& request) {  // --help, --version
    app.exit(request);
    return Done;
  } catch (const CLI::ParseError& error) {
    return usageError(app, error);
  }
  arguments.exporting.json = arguments.json;
  return list->parsed()     ? listBackups(arguments.path, arguments.json)
         : photos->parsed() ? listPhotos(arguments.backup, arguments.json)
         : files->parsed()  ? listFiles(arguments.backup, arguments.json)
         : check->parsed()  ? checkBackups(arguments.path, arguments.json)
                            : exportPhotos(arguments.exporting);
}

}  // namespace
}  // namespace snaplift::cli

int main(int argc, char** argv) {
  using namespace snaplift::cli;
  occupyStandardStreams();
  try {
    const ExitStatus status = run(argc, argv);
    return flushOutput() || status != Done ? status : Failed;
  } catch (const std::exception& error) {  // out of memory, or a library's own
    printMessage(error.what());
    return Failed;
  }
}
