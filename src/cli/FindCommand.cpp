#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "backups/BackupPlaces.h"
#include "backups/BackupSearch.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Output.h"
#include "cli/Selection.h"

namespace snaplift::cli {

ExitStatus findBackups(const std::vector<std::string>& folders) {
  catchInterrupts();
  printLinesAtOnce();
  bool isMissing = false;
  std::vector<std::string> readable;
  for (const std::string& name : folders) {
    std::string folder = folderMeantBy(name);
    if (const auto problem = whyFolderCannotBeRead(folder)) {
      printMessage(problem->text());
      isMissing = true;
    } else {
      readable.push_back(std::move(folder));
    }
  }
  std::stop_source stop;
  const BackupSearchResult result =
      searchForBackups(readable,
                       {.found = [](auto backup) { printJson(backupJson(*backup)); },
                        .looking =
                            [&](const std::string&) {
                              if (interrupted()) {
                                stop.request_stop();
                              }
                            },
                        .unreadable =
                            [](const std::string& folder, const std::error_code& error) {
                              printNote("cannot read " + folder + ": " + error.message());
                            }},
                       stop.get_token());
  if (!tellOfSearch(result)) {
    return Failed;
  }
  printNote(countText(result.backups, "backup") + " in " + countText(result.folders, "folder"));
  return interrupted() ? Interrupted : isMissing || result.backups == 0 ? NoSuchBackup : Done;
}

}  // namespace snaplift::cli
