#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Output.h"
#include "cli/ProgressBar.h"
#include "cli/Selection.h"
#include "export/ExportDestination.h"
#include "export/ExportJob.h"

namespace snaplift::cli {
namespace {

// The photos of the backups that can be read. An encrypted backup is named and left out: its path
// goes to `encrypted`.
std::vector<PhotoToExport> photosOf(const std::vector<BackupModel*>& backups,
                                    std::vector<std::string>& encrypted) {
  std::vector<PhotoToExport> photos;
  for (BackupModel* backup : backups) {
    const auto& items = backup->imageItems();
    if (backup->encrypted()) {
      printMessage("encrypted, nothing is exported from it: " + backup->path());
      encrypted.push_back(backup->path());
      continue;
    }
    std::ranges::transform(items, std::back_inserter(photos),
                           [](const auto& item) { return PhotoToExport{item.get()}; });
  }
  return photos;
}

std::string failureText(const ImageItem& photo, const FileError& error) {
  return "failed: " + (error.path == photo.path() ? "" : photo.path() + ": ") + error.description();
}

// Reports photos one by one, and stops the job between two of them when it is told to.
class Report final : public ExportObserver {
public:
  Report(std::size_t total, bool json) : m_json(json), m_progress(total) {}

  void photoDidEnd(const ExportedPhoto& photo) override {
    if (m_outputIsTerminal || photo.error) {
      m_progress.hide();
    }
    print(photo);
    m_progress.advance(photo.bytes);
    if (interrupted()) {
      m_job->stop();
    }
  }

  void exportDidEnd(const ExportSummary& summary) override { m_summary = summary; }

  void setJob(ExportJob& job) { m_job = &job; }
  const ExportSummary& summary() const { return m_summary; }

private:
  void print(const ExportedPhoto& photo) const {
    if (m_json) {
      printJson({{"message_type", "photo"},
                 {"uniquePath", photo.photo->path()},
                 {"written", photo.written.empty() ? Json(nullptr) : Json(photo.written)},
                 {"error", photo.error ? Json(photo.error->description()) : Json(nullptr)}});
    } else if (photo.error) {
      printMessage(failureText(*photo.photo, *photo.error));
    } else {
      printLine(photo.written);
    }
    if (photo.isShort) {
      printMessage("of another length than the backup states: " + photo.photo->path());
    }
  }

  const bool m_json;
  const bool m_outputIsTerminal = ::isatty(STDOUT_FILENO);
  ProgressBar m_progress;
  ExportJob* m_job = nullptr;
  ExportSummary m_summary;
};

ExportSummary exportAll(const std::vector<PhotoToExport>& photos, const ExportOptions& options) {
  Report report(photos.size(), options.json);
  ExportJob job(photos, options.destination,
                {.workers = options.workers,
                 .keepsDates = !options.noDates,
                 .skipsExisting = options.skipExisting,
                 .isDryRun = options.dryRun},
                report);
  report.setJob(job);
  if (interrupted()) {
    job.stop();
  }
  job.run();
  return report.summary();
}

std::string summaryText(const ExportSummary& summary, bool dryRun) {
  if (dryRun) {
    return "dry run, nothing was written: " + countText(summary.exported, "photo") +
           " can be exported, " + countText(summary.failed) + " cannot";
  }
  return countText(summary.exported, "photo") + " exported (" + sizeText(summary.bytes) + "), " +
         countText(summary.renamed) + " under a numbered name, " +
         (summary.skipped > 0 ? countText(summary.skipped) + " there already, " : "") +
         (summary.shortened > 0 ? countText(summary.shortened) + " short, " : "") +
         countText(summary.failed) + " failed";
}

void printSummary(const ExportSummary& summary, const std::vector<std::string>& encrypted,
                  const ExportOptions& options) {
  if (options.json) {
    printJson({{"message_type", "summary"},
               {"exported", options.dryRun ? 0 : summary.exported},
               {"renamed", summary.renamed},
               {"skipped", summary.skipped},
               {"short", summary.shortened},
               {"failed", summary.failed},
               {"bytes", summary.bytes},
               {"not_begun", summary.notBegun},
               {"interrupted", interrupted()},
               {"dry_run", options.dryRun},
               {"encrypted", encrypted}});
    return;
  }
  printNote((interrupted() ? "interrupted: " : "") + summaryText(summary, options.dryRun) +
            (summary.notBegun > 0 ? ", " + countText(summary.notBegun) + " not begun" : ""));
}

}  // namespace

ExitStatus exportPhotos(const ExportOptions& options) {
  const std::optional<Selection> chosen = Selection::initWithNames(options.from);
  if (!chosen || chosen->backups().empty()) {
    return NoSuchBackup;
  }
  std::vector<std::string> folders;
  std::ranges::transform(chosen->backups(), std::back_inserter(folders), &BackupModel::path);
  if (const auto problem = exportDestinationProblem(options.destination, folders)) {
    printMessage(*problem);
    return Failed;
  }
  catchInterrupts();
  printLinesAtOnce();
  std::vector<std::string> encrypted;
  const std::vector<PhotoToExport> photos = photosOf(chosen->backups(), encrypted);
  const ExportSummary summary = exportAll(photos, options);
  if (summary.onFlush) {
    printMessage("failed to bring the exported photos to the disk: " +
                 summary.onFlush->description());
  }
  if (summary.lost) {
    printMessage("nothing more can be written: " + summary.lost->description());
  }
  printSummary(summary, encrypted, options);
  if (interrupted()) {
    return Interrupted;
  }
  if (!encrypted.empty() && photos.empty()) {
    return Encrypted;
  }
  if (summary.onFlush) {
    return Failed;
  }
  const bool isComplete = std::ranges::all_of(chosen->backups(), &BackupModel::isComplete);
  const bool isWhole =
      summary.failed + summary.shortened + summary.notBegun == 0 && encrypted.empty();
  return isWhole && isComplete ? Done : SomePhotosFailed;
}

}  // namespace snaplift::cli
