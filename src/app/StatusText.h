#pragma once

#include <QString>
#include <string>

#include "backups/BackupModel.h"

namespace snaplift {

// The texts under the photos and of the sidebar. Counts of these texts are
// written without grouping, but for one that says otherwise.

// "5 Photos", "2 of 5 Photos Selected", "1 Photo", "1 of 1 Photos Selected", "No Photos".
QString photoCountText(int photos, int selected);

// "5 films and 2 other pictures are not shown", "1 film is not shown".
QString hiddenMediaText(const OtherMedia& others);

// "Showing 340 of 660", in the user's number format; empty where all are shown.
QString shownCountText(int shown, int all);

// "Exporting: 3 Photos Remaining".
QString exportProgressText(int remaining);

// What there is to know of a backup besides the title of its row, one thing a line: date and time,
// system version, folder, whether it is unfinished and, once it is loaded, the number of photos.
QString backupDescription(BackupModel& backup);

// A folder as a person calls it: by the last component of its path.
QString folderTitle(const std::string& folder);

}  // namespace snaplift
