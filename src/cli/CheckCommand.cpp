#include <memory>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/Output.h"
#include "cli/Selection.h"

namespace snaplift::cli {
namespace {

// What was found out about the photos of one backup.
struct Finding {
  std::size_t listed = 0, present = 0;
  std::vector<std::string> missing, unreadable, shortened;  // unique paths

  bool isClean() const { return present == listed; }
};

Finding findingOf(const std::vector<std::unique_ptr<ImageItem>>& photos) {
  Finding finding;
  finding.listed = photos.size();
  for (const auto& photo : photos) {
    const std::string& uniquePath = photo->path();
    switch (photo->contentState()) {
      case ContentState::Whole:
        ++finding.present;
        break;
      case ContentState::Short:
        finding.shortened.push_back(uniquePath);
        break;
      case ContentState::Unreadable:
        finding.unreadable.push_back(uniquePath);
        break;
      case ContentState::Missing:
        finding.missing.push_back(uniquePath);
        break;
    }
  }
  return finding;
}

void printPhotos(const BackupModel& backup, const char* what,
                 const std::vector<std::string>& uniquePaths) {
  for (const std::string& uniquePath : uniquePaths) {
    printLine(std::string("  ") + what + ": " + std::string(pathOnDevice(backup, uniquePath)));
  }
}

void printReport(DeviceModel& device, const BackupModel& backup, const Finding& finding) {
  printHeading(device.title() + ", " + backupText(device, backup));
  printLine("  " + countText(finding.listed, "photo") + " listed, " + countText(finding.present) +
            " present, " + countText(finding.missing.size()) + " missing" +
            rareCountText(finding.shortened.size(), "short") +
            rareCountText(finding.unreadable.size(), "without permission to read") +
            (backup.encrypted() ? ", encrypted" : "") +
            (backup.isComplete() ? "" : "; the list of files is incomplete"));
  if (backup.wasLeftUnfinished()) {
    printLine("  not finished by the device's backup");
  }
  printPhotos(backup, "missing", finding.missing);
  printPhotos(backup, "short", finding.shortened);
  printPhotos(backup, "no permission", finding.unreadable);
}

}  // namespace

ExitStatus checkBackups(const BackupNames& names, bool json) {
  const std::optional<Selection> selection = Selection::initWithNames(names);
  if (!selection || selection->backups().empty()) {
    return NoSuchBackup;
  }
  ExitStatus status = Done;
  for (BackupModel* backup : selection->backups()) {
    const Finding finding = findingOf(selection->photosOf(*backup));
    if (json) {
      printJson({{"path", backup->path()},
                 {"encrypted", backup->encrypted()},
                 {"incomplete", !backup->isComplete()},
                 {"unfinished", backup->wasLeftUnfinished()},
                 {"listed", finding.listed},
                 {"present", finding.present},
                 {"missing", finding.missing},
                 {"short", finding.shortened},
                 {"unreadable", finding.unreadable}});
    } else {
      printReport(selection->deviceOf(*backup), *backup, finding);
    }
    if (!finding.isClean() || !backup->isComplete()) {
      status = SomePhotosFailed;
    }
  }
  return status;
}

}  // namespace snaplift::cli
