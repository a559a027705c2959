#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/Output.h"
#include "cli/Selection.h"

namespace snaplift::cli {
namespace {

std::vector<std::string> missingPhotos(BackupModel& backup) {
  std::vector<std::string> missing;
  for (const std::string& uniquePath : backup.imagePaths()) {
    if (!backup.holdsImageAtPath(uniquePath)) {
      missing.push_back(uniquePath);
    }
  }
  return missing;
}

void printReport(const BackupModel& backup, std::size_t listed,
                 const std::vector<std::string>& missing) {
  printHeading(backup.path());
  printLine("  " + countText(listed, "photo") + " listed, " + countText(listed - missing.size()) +
            " present, " + countText(missing.size()) + " missing" +
            (backup.encrypted() ? ", encrypted" : ""));
  for (const std::string& uniquePath : missing) {
    printLine("  missing: " + std::string(pathOnDevice(backup, uniquePath)));
  }
}

}  // namespace

ExitStatus checkBackups(const std::optional<std::string>& path, bool json) {
  const std::optional<Selection> selection = Selection::initWithPath(path);
  if (!selection) {
    return NoSuchBackup;
  }
  ExitStatus status = Done;
  for (BackupModel* backup : selection->backups()) {
    const std::size_t listed = backup->imagePaths().size();
    const std::vector<std::string> missing = missingPhotos(*backup);
    if (json) {
      printJson({{"path", backup->path()},
                 {"encrypted", backup->encrypted()},
                 {"listed", listed},
                 {"present", listed - missing.size()},
                 {"missing", missing}});
    } else {
      printReport(*backup, listed, missing);
    }
    if (!missing.empty() || !backup->isComplete()) {
      status = SomePhotosFailed;
    }
  }
  return status;
}

}  // namespace snaplift::cli
