#pragma once

#include <QObject>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "export/ExportJob.h"

namespace snaplift {

// What is to be exported and, when that is over, what came of it. Whoever tries again hands in the
// same report: it tells of all attempts then.
struct ExportReport {
  std::string destination;
  ExportOptions options;
  // What the backups are called of which nothing is exported, and those that may lack photos.
  std::vector<std::string> encrypted, damaged;

  // What is left to export: in the end those that failed, and then those that were not begun.
  std::vector<PhotoToExport> missing;
  ExportSummary summary;
  std::vector<ExportedPhoto> arrived;   // in the order of the photos, as the failures
  std::vector<ExportedPhoto> failures;  // of the last attempt
};

// How far all exports are that have run since the window last exported nothing.
struct ExportProgress {
  std::size_t photos = 0, photosEnded = 0;
  std::uint64_t bytes = 0, bytesEnded = 0;  // 0 bytes: the sizes are not known, or not yet
};

// The exports that the window has begun: any number at once, each in threads of its own. It brings
// what they tell to the user interface's thread, where all of its own functions are called.
//
// Not every process ends in order: when the display goes away, the toolkit calls exit(). The photos
// in hand are finished then as well.
class WindowExports : public QObject {
  Q_OBJECT

public:
  static constexpr std::size_t allPhotos = SIZE_MAX;

  explicit WindowExports(QObject* parent = nullptr);
  ~WindowExports() override;  // stops after the photos in hand

  // Says whether an export may begin, by calling `goOn`, now or later; never called, it does not.
  // `bytes` is what its photos need, 0 where the size of one is not known.
  using Decide = std::function<void(const ExportReport& report, std::uint64_t bytes,
                                    const std::function<void()>& goOn)>;
  // Tries the first `photos` that are missing, or all, once their backups have been asked for their
  // sizes and `decide`, if there is one, says so.
  void begin(ExportReport report, std::size_t photos = allPhotos, Decide decide = {});

  // How many photos are still to end, of all exports. An export whose photos are all there counts
  // as one until they are on the disk.
  std::size_t remaining() const;
  ExportProgress progress() const;
  bool isExporting() const { return !m_exports.empty() || !m_measured.empty(); }

  // No photo is begun any more. ended() comes as usual.
  void stop();

  // The same, and returns when all is over; no ended() comes.
  void stopAndWait();

signals:
  // remaining() has changed, once or often.
  void progressed();
  void ended(const ExportReport& report);

private:
  class Export;
  using ExportPointer = std::shared_ptr<Export>;
  void exportIsMeasured(const Export* measured, const Decide& decide);
  void start(const ExportPointer& next);
  void exportHasEnded(const Export* over);
  void tellProgress();

  std::list<ExportPointer> m_measured;  // those that are being measured
  std::list<ExportPointer> m_exports;   // those that run
  std::vector<ExportProgress> m_over;   // of those that ended while others went on
  std::atomic<bool> m_isProgressTold = false;
};

}  // namespace snaplift
