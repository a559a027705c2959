#include <algorithm>
#include <atomic>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Output.h"
#include "cli/ProgressBar.h"
#include "cli/Selection.h"
#include "foundation/Parallel.h"
#include "library/ExportDestination.h"

namespace snaplift::cli {
namespace {

struct Summary {
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
  printMessage("no device called " + name + " in " + root.path());
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

// Reports photos one by one, from any thread, and counts them.
class Report {
public:
  Report(std::size_t total, bool json) : m_json(json), m_progress(total) {}

  void add(const ImageItem& photo, const ExtractOutcome& outcome) {
    m_progress.advance(outcome.bytes);
    const std::lock_guard lock(m_mutex);
    const std::optional<std::string> error =
        outcome.error ? std::optional(outcome.error->description()) : std::nullopt;
    if (m_json) {
      printJson({{"message_type", "photo"},
                 {"uniquePath", photo.path()},
                 {"written", outcome.written.empty() ? Json(nullptr) : Json(outcome.written)},
                 {"error", jsonText(error)}});
    } else if (error) {
      printMessage("failed: " + *error);
    } else {
      printLine(outcome.written.empty() ? photo.path() : outcome.written);
    }
    m_summary.failed += error ? 1 : 0;
    m_summary.exported += outcome.written.empty() ? 0 : 1;
    m_summary.renamed += outcome.renamed ? 1 : 0;
    m_summary.bytes += outcome.bytes;
  }

  // To be called when no thread adds any more.
  const Summary& summary() const { return m_summary; }

private:
  const bool m_json;
  ProgressBar m_progress;
  std::mutex m_mutex;
  Summary m_summary;
};

// What a dry run says of a photo: where it would fail, and nothing more; nothing is written.
ExtractOutcome examinePhoto(const ImageItem& photo) {
  ExtractOutcome outcome;
  if (const auto bytes = photo.imageRepresentation(); !bytes) {
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

void printSummary(const Summary& summary, const ExportOptions& options) {
  if (options.json) {
    printJson({{"message_type", "summary"},
               {"exported", summary.exported},
               {"renamed", summary.renamed},
               {"failed", summary.failed},
               {"bytes", summary.bytes}});
    return;
  }
  printMessage(options.dryRun
                   ? "dry run, nothing was written; " + countText(summary.failed, "photo") +
                         " would fail"
                   : countText(summary.exported, "photo") + " exported (" +
                         sizeText(summary.bytes) + "), " + countText(summary.renamed) +
                         " under a numbered name, " + countText(summary.failed) + " failed");
}

}  // namespace

ExitStatus exportPhotos(const ExportOptions& options) {
  const std::optional<ChosenBackups> chosen = chooseBackups(options);
  if (!chosen) {
    return NoSuchBackup;
  }
  std::vector<std::string> folders;
  std::ranges::transform(chosen->backups, std::back_inserter(folders), &BackupModel::path);
  if (const auto problem = exportDestinationProblem(options.destination, folders)) {
    printMessage(*problem);
    return Failed;
  }
  catchInterrupts();
  bool someEncrypted = false;
  const std::vector<ImageItem*> photos = photosOf(chosen->backups, someEncrypted);
  const Summary summary = exportAll(photos, options);
  printSummary(summary, options);
  if (interrupted()) {
    return Interrupted;
  }
  if (someEncrypted && photos.empty()) {
    return Encrypted;
  }
  return summary.failed || someEncrypted ? SomePhotosFailed : Done;
}

}  // namespace snaplift::cli
