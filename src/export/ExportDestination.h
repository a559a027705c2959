#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/Sentence.h"

namespace snaplift {

// Why photos cannot be exported into the folder `destination`, as a sentence for the user; absent
// where they can. Asked once, before the first photo: it catches the mistake that would make every
// photo fail (no folder, no right to write), and the one that would do harm: a destination inside a
// backup, into which nothing is ever written.
//
// See backupAround() for what a backup is; links in the destination's path are resolved first.
std::optional<Sentence> exportDestinationProblem(const std::string& destination,
                                                 const std::vector<std::string>& backupFolders);

// The same for the report of an export (see ExportReportFile.h) at `path`, in words that name it.
std::optional<Sentence> reportFileProblem(const std::string& path,
                                          const std::vector<std::string>& backupFolders);

}  // namespace snaplift
