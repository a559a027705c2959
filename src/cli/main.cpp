#include <exception>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "backups/BackupAround.h"
#include "cli/Commands.h"
#include "cli/Completion.h"
#include "cli/Output.h"
#include "foundation/DateWords.h"

namespace snaplift::cli {
namespace {

constexpr const char* introduction =
    "Examples:\n"
    "  snaplift-cli list                         the devices and backups of this user\n"
    "  snaplift-cli find /media                  the backups of all connected disks\n"
    "  snaplift-cli photos latest                the photos of the newest backup\n"
    "  snaplift-cli check                        are all listed photos there?\n"
    "  snaplift-cli export BACKUP -o ~/Pictures  copy every photo out\n"
    "  snaplift-cli export --device \"Anna's Phone\" -o ~/Pictures\n"
    "  snaplift-cli verify report.csv            are the files of export --report as they were?\n"
    "\n"
    "Gets photos back out of the backups of handsets (system versions 1 to today's).\n"
    "Backups are only read, never written. A BACKUP is a folder that is one or has some\n"
    "below it; or, of your root, a backup's folder name, its beginning, or \"latest\".\n";

constexpr const char* exitStatuses =
    "\nExit status: 0 done, 1 failed, 2 usage, 3 some photos missing or failed,\n"
    "10 no such root or backup, 12 encrypted (nothing is exported), 130 interrupted.";

struct Arguments {
  BackupNames names;
  std::vector<std::string> folders;
  std::string report;
  bool json = false;
  bool quiet = false;
  ExportOptions exporting;
};

CLI::App* addCommand(CLI::App& app, Arguments& arguments, const char* name, const char* purpose) {
  CLI::App* command = app.add_subcommand(name, purpose)->group("Commands");
  command->add_flag("--json", arguments.json, "Print JSON, one value a line");
  command->add_flag("-q,--quiet", arguments.quiet, "Say nothing but data and errors");
  return command;
}

CLI::App* addBackupCommand(CLI::App& app, Arguments& arguments, const char* name,
                           const char* purpose, const char* backups) {
  CLI::App* command = addCommand(app, arguments, name, purpose);
  command->add_option("BACKUP", arguments.names.names, backups)->type_name("");
  command
      ->add_option("-r,--root", arguments.names.root, "Where names are looked up (default: yours)")
      ->type_name("FOLDER");
  return command;
}

void addMediaOption(CLI::App& command, Arguments& arguments) {
  command
      .add_option_function<std::string>(
          "--media",
          [&arguments](const std::string& media) {
            arguments.names.wantsAllMedia = media == "all";
          },
          "Of versions 1 to 9: photos (jpg and png), or all pictures and films")
      ->type_name("photos|all")
      ->check(CLI::IsMember({"photos", "all"}).description(""));
}

CLI::App* addOneBackupCommand(CLI::App& app, Arguments& arguments, const char* name,
                              const char* purpose) {
  CLI::App* command = addBackupCommand(app, arguments, name, purpose, "One backup");
  command->get_option("BACKUP")->required()->expected(1);
  return command;
}

CLI::App* addFindCommand(CLI::App& app, Arguments& arguments) {
  CLI::App* command =
      addCommand(app, arguments, "find", "Search folders or whole disks for backups");
  command->add_option("FOLDER", arguments.folders, "Where to search")->type_name("")->required();
  return command;
}

void addLayoutOption(CLI::App& command, ExportOptions& options) {
  command.add_option("--layout", options.layout, "Folders: flat (none), device, month or dcim")
      ->type_name(CLI::detail::join(layoutNames, "|"))
      ->check(CLI::IsMember(layoutNames).description(""));
}

std::string problemOfDate(const std::string& text) {
  return timeSpanOfWords(text) ? "" : "no date is " + text;
}

void addChoiceOptions(CLI::App& command, PhotoChoice& choice) {
  command
      .add_option("--since", choice.since,
                  "No photos from before (2011, june 2011, 2011-10-12 ...)")
      ->type_name("DATE")
      ->check(problemOfDate);
  command.add_option("--until", choice.until, "No photos from after")
      ->type_name("DATE")
      ->check(problemOfDate);
  command.add_option("--match", choice.patterns, "Only photos whose name or path matches")
      ->type_name("GLOB")
      ->allow_extra_args(false);
  command.add_flag("--originals", choice.originals, "Only photos as the camera took them");
  command
      .add_option("--from-file", choice.list, "Only photos of this list of unique paths (-: input)")
      ->type_name("FILE");
}

CLI::App* addExportCommand(CLI::App& app, Arguments& arguments) {
  ExportOptions& options = arguments.exporting;
  CLI::App* command = addBackupCommand(app, arguments, "export",
                                       "Copy photos into a folder; nothing is ever replaced",
                                       "Whose photos to copy");
  command->add_option("-o,--output", options.destination, "The folder that receives the photos")
      ->type_name("FOLDER")
      ->required();
  command
      ->add_option("-d,--device", arguments.names.deviceNames,
                   "All backups of the device of this name")
      ->type_name("NAME")
      ->allow_extra_args(false);  // each time one name: what follows is a BACKUP
  addMediaOption(*command, arguments);
  command->add_option("-j,--jobs", options.workers, "Photos in hand at once (default: one a core)")
      ->type_name("NUMBER")
      ->check(CLI::Range(1, 256).description(""));
  addLayoutOption(*command, options);
  addChoiceOptions(*command, options.choice);
  command->add_flag("--skip-existing", options.skipExisting,
                    "Leave out photos that are there already");
  command->add_flag("--no-dates", options.noDates, "Do not give the files their photos' dates");
  CLI::Option* dryRun = command->add_flag("-n,--dry-run", options.dryRun,
                                          "Read every photo, say what would be written where");
  command->add_option("--report", options.report, "Write what came of each photo, with digests")
      ->type_name("FILE")
      ->excludes(dryRun);
  return command;
}

CLI::App* addVerifyCommand(CLI::App& app, Arguments& arguments) {
  CLI::App* command =
      addCommand(app, arguments, "verify", "Compare exported files with their report");
  command->add_option("REPORT", arguments.report, "Of export --report")->type_name("")->required();
  return command;
}

// What was given in the place of a command.
std::string unknownCommand(int argc, char** argv) {
  if (argc < 2) {
    return {};
  }
  const std::string given = argv[1];
  return (given.starts_with('-') ? "not expected before a command: " : "unknown command: ") +
         given + "; ";
}

// Errors quote arguments, which are names of files often enough: no escape of theirs gets out.
ExitStatus usageError(const CLI::App& app, const CLI::ParseError& error,
                      const std::string& unknown) {
  const std::vector<CLI::App*> commands = app.get_subcommands();
  if (commands.empty()) {
    printMessage(
        unknown +
        "name a command: list, find, photos, files, check, export or verify; see snaplift-cli "
        "--help");
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
  CLI::App* list =
      addBackupCommand(app, arguments, "list", "List devices and backups, newest first",
                       "Which (default: your root)");
  CLI::App* find = addFindCommand(app, arguments);
  CLI::App* photos = addOneBackupCommand(app, arguments, "photos", "List the photos of one backup");
  CLI::App* files = addOneBackupCommand(app, arguments, "files", "List the files of one backup");
  CLI::App* check =
      addBackupCommand(app, arguments, "check", "Count the listed, present and missing photos",
                       "Which (default: your root)");
  addMediaOption(*photos, arguments);
  addMediaOption(*check, arguments);
  CLI::App* exporting = addExportCommand(app, arguments);
  CLI::App* verify = addVerifyCommand(app, arguments);
  if (argc > 1 && std::string_view(argv[1]) == completionCommand) {
    return complete(app, {argv + 2, argv + argc});
  }
  try {
    app.parse(argc, argv);
    if (exporting->parsed() && arguments.names.names.empty() &&
        arguments.names.deviceNames.empty()) {
      throw CLI::RequiredError("BACKUP or --device");
    }
  } catch (const CLI::Success& request) {  // --help, --version
    std::ostringstream answer;
    app.exit(request, answer, answer);
    printText(answer.str());
    return Done;
  } catch (const CLI::ParseError& error) {
    return usageError(app, error, unknownCommand(argc, argv));
  }
  if (arguments.quiet) {
    beQuiet();
  }
  arguments.exporting.from = arguments.names;
  arguments.exporting.json = arguments.json;
  return list->parsed()     ? listBackups(arguments.names, arguments.json)
         : find->parsed()   ? findBackups(arguments.folders)
         : photos->parsed() ? listPhotos(arguments.names, arguments.json)
         : files->parsed()  ? listFiles(arguments.names, arguments.json)
         : check->parsed()  ? checkBackups(arguments.names, arguments.json)
         : verify->parsed() ? verifyReport(arguments.report, arguments.json)
                            : exportPhotos(arguments.exporting);
}

}  // namespace
}  // namespace snaplift::cli

int main(int argc, char** argv) {
  using namespace snaplift::cli;
  occupyStandardStreams();
  snaplift::keepTemporaryFolderOutOfBackups();
  try {
    const ExitStatus status = run(argc, argv);
    return flushOutput() || status != Done ? status : Failed;
  } catch (const std::exception& error) {  // out of memory, or a library's own
    printMessage(error.what());
    return Failed;
  }
}
