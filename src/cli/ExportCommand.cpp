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
#include "export/ExportLayout.h"
#include "export/ExportReportFile.h"
#include "foundation/files/File.h"

namespace snaplift::cli {
namespace {

ExportLayout layoutCalled(const std::string& name) {
  const auto found = std::ranges::find(layoutNames, name);
  return static_cast<ExportLayout>(found - layoutNames.begin());
}

// The photos that `filter` takes of the backups that can be read, with their folders. An encrypted
// backup is named and left out: its path goes to `encrypted`.
std::vector<PhotoToExport> photosOf(const Selection& chosen, PhotoFilter& filter,
                                    ExportLayout layout, std::vector<std::string>& encrypted) {
  std::vector<PhotoToExport> photos;
  LayoutFolders folders(layout);
  for (BackupModel* backup : chosen.backups()) {
    const auto& items = chosen.photosOf(*backup);
    if (backup->encrypted()) {
      printMessage("encrypted, nothing is exported from it: " + backup->path());
      encrypted.push_back(backup->path());
      continue;
    }
    const std::string handset = chosen.deviceOf(*backup).titleOfHandset(*backup);
    for (const auto& item : items) {
      if (filter.takes(*item)) {
        photos.push_back({item.get(), folders.folderFor(*item, handset)});
      }
    }
  }
  return photos;
}

std::string failureText(const ImageItem& photo, const FileError& error) {
  return "failed: " + (error.path == photo.path() ? "" : photo.path() + ": ") + error.description();
}

// Reports photos one by one, and stops the job between two of them when it is told to.
class Report final : public ExportObserver {
public:
  Report(std::size_t total, bool json, bool keepsPhotos)
      : m_json(json), m_keepsPhotos(keepsPhotos), m_progress(total) {}

  void photoDidEnd(const ExportedPhoto& photo) override {
    if (m_outputIsTerminal || photo.error) {
      m_progress.hide();
    }
    print(photo);
    if (m_keepsPhotos) {
      m_photos.push_back(photo);
    }
    m_progress.advance(photo.bytes);
    if (interrupted()) {
      m_job->stop();
    }
  }

  void exportDidEnd(const ExportSummary& summary) override { m_summary = summary; }

  void setJob(ExportJob& job) { m_job = &job; }
  const ExportSummary& summary() const { return m_summary; }
  const std::vector<ExportedPhoto>& photos() const { return m_photos; }

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
  const bool m_keepsPhotos;
  const bool m_outputIsTerminal = ::isatty(STDOUT_FILENO);
  ProgressBar m_progress;
  ExportJob* m_job = nullptr;
  ExportSummary m_summary;
  std::vector<ExportedPhoto> m_photos;  // those that have ended, where somebody wants them
};

// What came of an export as a whole.
struct Outcome {
  ExportSummary summary;
  bool isReported = true;  // the report could be written, where one is wanted
  bool isProven = true;    // every file that it names could be read again
};

void writeReportOf(const std::vector<PhotoToExport>& photos,
                   const std::vector<ExportedPhoto>& ended, const std::string& path,
                   Outcome& outcome) {
  const std::vector<ReportedPhoto> report = reportOf(photos, ended);
  for (const ReportedPhoto& photo : report) {
    if (!photo.written.empty() && photo.sha256.empty()) {
      printMessage("cannot be read again: " + photo.written);
      outcome.isProven = false;
    }
  }
  if (const auto error = writeReport(path, report, ReportPlace::MustBeFree)) {
    printMessage("the report could not be written: " + error->description());
    outcome.isReported = false;
  }
}

Outcome exportAll(const std::vector<PhotoToExport>& photos, const ExportOptions& options) {
  Report report(photos.size(), options.json, options.report.has_value());
  Outcome outcome;
  {
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
  }
  outcome.summary = report.summary();
  if (options.report) {
    writeReportOf(photos, report.photos(), *options.report, outcome);
  }
  return outcome;
}

std::string summaryText(const ExportSummary& summary, bool dryRun) {
  if (dryRun) {
    return "dry run, nothing was written: " + countText(summary.exported, "photo") +
           " can be exported, " + countText(summary.failed) + " cannot";
  }
  return countText(summary.exported, "photo") + " exported (" + sizeText(summary.bytes) + "), " +
         countText(summary.renamed) + " under another name" +
         rareCountText(summary.skipped, "there already") +
         rareCountText(summary.shortened, "short") + ", " + countText(summary.failed) + " failed";
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
            rareCountText(summary.notBegun, "not begun"));
}

// Why the destination or the report's place cannot be used.
std::optional<Sentence> problemOf(const ExportOptions& options, const Selection& chosen) {
  std::vector<std::string> folders;
  std::ranges::transform(chosen.backups(), std::back_inserter(folders), &BackupModel::path);
  auto problem = exportDestinationProblem(options.destination, folders);
  if (problem || !options.report) {
    return problem;
  }
  return fileAttributes(*options.report) ? Sentence{"\"%1\" exists already.", {*options.report}}
                                         : reportFileProblem(*options.report, folders);
}

ExitStatus statusOf(const Outcome& outcome, bool isComplete) {
  const ExportSummary& summary = outcome.summary;
  if (interrupted()) {
    return Interrupted;
  }
  if (summary.onFlush || !outcome.isReported) {
    return Failed;
  }
  const bool isWhole = summary.failed + summary.shortened + summary.notBegun == 0;
  return isWhole && outcome.isProven && isComplete ? Done : SomePhotosFailed;
}

}  // namespace

ExitStatus exportPhotos(const ExportOptions& options) {
  std::optional<PhotoFilter> filter = PhotoFilter::ofChoice(options.choice);
  if (!filter) {
    return Failed;
  }
  const std::optional<Selection> chosen = Selection::initWithNames(options.from);
  if (!chosen || chosen->backups().empty()) {
    return NoSuchBackup;
  }
  if (const auto problem = problemOf(options, *chosen)) {
    printMessage(problem->text());
    return Failed;
  }
  catchInterrupts();
  printLinesAtOnce();
  std::vector<std::string> encrypted;
  const std::vector<PhotoToExport> photos =
      photosOf(*chosen, *filter, layoutCalled(options.layout), encrypted);
  const std::vector<std::string> unknown = filter->unknownPaths();
  for (const std::string& path : unknown) {
    printMessage("no such photo: " + path);
  }
  const Outcome outcome = exportAll(photos, options);
  const ExportSummary& summary = outcome.summary;
  if (summary.onFlush) {
    printMessage("failed to bring the exported photos to the disk: " +
                 summary.onFlush->description());
  }
  if (summary.lost) {
    printMessage("nothing more can be written: " + summary.lost->description());
  }
  printSummary(summary, encrypted, options);
  if (!encrypted.empty() && photos.empty() && !interrupted()) {
    return Encrypted;
  }
  return statusOf(outcome, encrypted.empty() && unknown.empty() &&
                               std::ranges::all_of(chosen->backups(), &BackupModel::isComplete));
}

}  // namespace snaplift::cli
