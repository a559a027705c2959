#pragma once

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "export/ExportTypes.h"
#include "foundation/files/FileError.h"

namespace snaplift {

// A report says what came of each photo of an export, for those who must prove it: a table (CSV,
// RFC 4180) with a heading and one line a photo, in the order of the export. Names stand in it byte
// for byte. It can be read again, and the files compared with it.
//
// The digests are those of the files as they are read again when the export is over and flushed,
// past the system's cache where it lets one: they prove what the disk holds, and the kernel may
// still copy photos without their passing through the process.

// One line of a report.
struct ReportedPhoto {
  std::string uniquePath;
  std::string written;      // the absolute path of the file; empty where nothing arrived
  std::uint64_t bytes = 0;  // of that file
  std::string sha256;       // of its bytes, in lower-case digits; empty where unreadable
  std::string date;         // the photo's, RFC 3339; empty where it is not known
  // "exported", "short" (exported, of another length than the backup states), "skipped" (it was
  // there already), "failed: " with the reason, or "not begun".
  std::string outcome;
};

// The report of an export of `photos`, of which `ended` have ended, in that order. Reads every file
// that was written or found there again, on several threads, so it takes as long as the disk does.
// A file that cannot be read again, or has another length by now, is "failed: ...", with the path
// that it had. Files that are not begun when `stop` is requested are left without a digest.
std::vector<ReportedPhoto> reportOf(const std::vector<PhotoToExport>& photos,
                                    const std::vector<ExportedPhoto>& ended,
                                    std::stop_token stop = {});

// Whether a file that a report of these photos names could not be read again.
bool hasUnprovenFile(const std::vector<ReportedPhoto>& report);

enum class ReportPlace { MustBeFree, MayBeReplaced };

// Writes the file at `path` as a whole, or not at all, and brings it to the disk. Whether it may be
// written there is for reportFileProblem() to say.
[[nodiscard]] std::optional<FileError> writeReport(const std::string& path,
                                                   const std::vector<ReportedPhoto>& report,
                                                   ReportPlace place);

// A report that was read, or why it cannot be, as a sentence for the user.
struct ReportRead {
  std::vector<ReportedPhoto> photos;
  std::optional<std::string> problem;
};
ReportRead readReport(const std::string& path);

// What has become of the file of a reported photo.
enum class ReportedFile {
  None,  // nothing arrived that could be compared
  Same,  // it has the bytes that it had
  Different,
  Gone,
  Unreadable,
};
ReportedFile compareWithReport(const ReportedPhoto& photo);

}  // namespace snaplift
