#include <algorithm>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Output.h"
#include "cli/ProgressBar.h"
#include "cli/Selection.h"
#include "foundation/FileWriting.h"
#include "foundation/Parallel.h"
#include "foundation/Path.h"
#include "library/ExportDestination.h"

namespace snaplift::cli {
namespace {

struct Summary {
  std::uint64_t processed = 0;  // whatever came of them
  std::uint64_t exported = 0;
  std::uint64_t renamed = 0;
  std::uint64_t failed = 0;
  std::uint64_t bytes = 0;
};

// The backups that the options name, each once, and what keeps them alive.
struct ChosenBackups {
  std::vector<Selection> selections;
  std::vector<BackupModel*> backups;

  void add(BackupModel* backup) {
    const auto samePath = [&](const BackupModel* other) { return other->path() == backup->path(); };
    if (std::ranges::none_of(backups, samePath)) {
      backups.push_back(backup);
    }
  }
};

bool addDevice(ChosenBackups& chosen, const Selection& root, const std::string& name) {
  for (DeviceModel* device : root.devices()) {
    if (device->name() == name) {
      for (const auto& backup : device->backups()) {
        chosen.add(backup.get());
      }
      return true;
    }
  }
  std::string others;
  for (const DeviceModel* device : root.devices()) {
    others += device->name() ? (others.empty() ? "" : ", ") + *device->name() : "";
  }
  printMessage("no device called " + name + " in " + root.path() +
               (others.empty() ? "" : "; there are: " + others));
  return false;
}

std::optional<ChosenBackups> chooseBackups(const ExportOptions& options) {
  ChosenBackups chosen;
  for (const std::string& path : options.paths) {
    std::optional<Selection> selection = Selection::initWithPath(path);
    if (!selection) {
      return std::nullopt;
    }
    std::ranges::for_each(selection->backups(), [&](BackupModel* b) { chosen.add(b); });
    chosen.selections.push_back(std::move(*selection));
  }
  if (!options.deviceNames.empty()) {
    std::optional<Selection> root = Selection::initWithPath(options.root);
    if (!root || !std::ranges::all_of(options.deviceNames, [&](const std::string& name) {
          return addDevice(chosen, *root, name);
        })) {
      return std::nullopt;
    }
    chosen.selections.push_back(std::move(*root));
  }
  return chosen;
}

// The photos of the backups that can be read; an encrypted backup is named and left out.
std::vector<ImageItem*> photosOf(const std::vector<BackupModel*>& backups, bool& someEncrypted) {
  std::vector<ImageItem*> photos;
  for (BackupModel* backup : backups) {
    const auto& items = backup->imageItems();
    if (backup->encrypted()) {
      printMessage("encrypted, nothing is exported from it: " + backup->path());
      someEncrypted = true;
      continue;
    }
    std::ranges::transform(items, std::back_inserter(photos),
                           [](auto& item) { return item.get(); });
  }
  return photos;
}

std::string failureText(const ImageItem& photo, const FileError& error) {
  return "failed: " + (error.path == photo.path() ? "" : photo.path() + ": ") + error.description();
}

// Reports photos one by one, from any thread, and counts them.
class Report {
public:
  Report(std::size_t total, bool json) : m_json(json), m_progress(total) {}

  void add(const ImageItem& photo, const ExtractOutcome& outcome) {
    const std::lock_guard lock(m_mutex);
    if (m_outputIsTerminal || outcome.error) {
      m_progress.hide();
    }
    print(photo, outcome);
    ++m_summary.processed;
    m_summary.failed += outcome.error ? 1 : 0;
    m_summary.exported += outcome.written.empty() ? 0 : 1;
    m_summary.renamed += outcome.renamed ? 1 : 0;
    m_summary.bytes += outcome.bytes;
    m_progress.advance(outcome.bytes);
  }

  // To be called when no thread adds any more.
  const Summary& summary() const { return m_summary; }

private:
  void print(const ImageItem& photo, const ExtractOutcome& outcome) const {
    const std::string& written = outcome.written;
    if (m_json) {
      printJson({{"message_type", "photo"},
                 {"uniquePath", photo.path()},
                 {"written", written.empty() ? Json(nullptr) : Json(written)},
                 {"error", outcome.error ? Json(outcome.error->description()) : Json(nullptr)}});
    } else if (outcome.error) {
      printMessage(failureText(photo, *outcome.error));
    } else {
      printLine(written.empty() ? photo.path() : written);
    }
  }

  const bool m_json;
  const bool m_outputIsTerminal = ::isatty(STDOUT_FILENO);
  ProgressBar m_progress;
  std::mutex m_mutex;
  Summary m_summary;
};

// What a dry run says of a photo: why it would fail, and nothing more; nothing is written.
ExtractOutcome examinePhoto(const ImageItem& photo) {
  ExtractOutcome outcome;
  if (!isFileName(photo.fileName())) {
    outcome.error = FileError::invalidFileName(photo.path());
  } else if (!photo.imageRepresentation()) {
    outcome.error = FileError::unreadable(photo.path());
  }
  return outcome;
}

Summary exportAll(const std::vector<ImageItem*>& photos, const ExportOptions& options) {
  Report report(photos.size(), options.json);
  std::stop_source stop;
  const unsigned workers =
      options.workers ? options.workers : std::max(1u, std::thread::hardware_concurrency());
  parallelFor(
      photos.size(), workers,
      [&](std::size_t i) {
        if (interrupted()) {
          stop.request_stop();
          return;
        }
        thread_local Bytes buffer;
        ImageItem& photo = *photos[i];
        report.add(photo, options.dryRun ? examinePhoto(photo)
                                         : photo.extractPhoto(options.destination, buffer));
      },
      stop.get_token());
  return report.summary();
}

std::string summaryText(const Summary& summary, bool dryRun) {
  if (dryRun) {
    return "dry run, nothing was written: " +
           countText(summary.processed - summary.failed, "photo") + " can be exported, " +
           countText(summary.failed) + " cannot";
  }
  return countText(summary.exported, "photo") + " exported (" + sizeText(summary.bytes) + "), " +
         countText(summary.renamed) + " under a numbered name, " + countText(summary.failed) +
         " failed";
}

void printSummary(const Summary& summary, std::size_t total, const ExportOptions& options) {
  if (options.json) {
    printJson({{"message_type", "summary"},
               {"exported", summary.exported},
               {"renamed", summary.renamed},
               {"failed", summary.failed},
               {"bytes", summary.bytes}});
    return;
  }
  const std::uint64_t left = total - summary.processed;
  printMessage((interrupted() ? "interrupted: " : "") + summaryText(summary, options.dryRun) +
               (left > 0 ? ", " + countText(left) + " not begun" : ""));
}

// Waits until the photos are on the disk; false, and a message to the user, where that is not sure.
bool bringToDisk(const std::string& destination) {
  const std::optional<FileError> error = flushFileSystem(destination);
  if (error) {
    printMessage("failed to bring the exported photos to the disk: " + error->description());
  }
  return !error;
}

}  // namespace

ExitStatus exportPhotos(const ExportOptions& options) {
  const std::optional<ChosenBackups> chosen = chooseBackups(options);
  if (!chosen || chosen->backups.empty()) {
    return NoSuchBackup;
  }
  std::vector<std::string> folders;
  std::ranges::transform(chosen->backups, std::back_inserter(folders), &BackupModel::path);
  if (const auto problem = exportDestinationProblem(options.destination, folders)) {
    printMessage(*problem);
    return Failed;
  }
  catchInterrupts();
  printLinesAtOnce();
  bool someEncrypted = false;
  const std::vector<ImageItem*> photos = photosOf(chosen->backups, someEncrypted);
  const Summary summary = exportAll(photos, options);
  const bool isOnDisk = summary.exported == 0 || bringToDisk(options.destination);
  printSummary(summary, photos.size(), options);
  if (interrupted()) {
    return Interrupted;
  }
  if (someEncrypted && photos.empty()) {
    return Encrypted;
  }
  if (!isOnDisk) {
    return Failed;
  }
  const bool isComplete = std::ranges::all_of(chosen->backups, &BackupModel::isComplete);
  return summary.failed || someEncrypted || !isComplete ? SomePhotosFailed : Done;
}

}  // namespace snaplift::cli
