#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "library/ImageItem.h"

namespace snaplift {

// What went wrong in a batch.
struct ExportFailures {
  // The photos whose failure is told in words; of 10,000, nobody reads more.
  static constexpr std::size_t toldPhotos = 5;

  struct Photo {
    std::string name;
    FileError error;
  };

  std::size_t photoCount = 0;        // of the whole batch
  std::size_t failedCount = 0;       // of those, the ones that did not arrive
  std::vector<Photo> first;          // the first that failed
  std::optional<FileError> onFlush;  // the photos arrived, and may be lost with the power
};

// The photos that one command exports into one folder. It exists so that they are on the disk when
// the window says that the export is over, and so that the user hears once what did not arrive:
// whoever extracts the last of them flushes the folder's file system, and reports, before the
// operation ends. The flush is no operation of its own, which the status text would count as a
// photo; and it never runs on the user interface's thread, where no photo is extracted.
//
// The operations share it. Of an export that is stopped, the last operation to go does the flush,
// and nothing is reported.
class ExportBatch {
public:
  // `report` is called once after the last photo, on its thread, if anything went wrong.
  using Report = std::function<void(const ExportFailures& failures)>;

  ExportBatch(std::string destination, std::size_t photoCount, Report report);
  ExportBatch(const ExportBatch&) = delete;
  ExportBatch& operator=(const ExportBatch&) = delete;
  ~ExportBatch() { flush(); }

  // To be called once for each photo, on any thread. Failures are lines in the system log as well.
  void extract(ImageItem& photo);

private:
  bool noteEnd(const ImageItem& photo, const std::optional<FileError>& error);
  void flush();

  const std::string m_destination;
  const Report m_report;

  std::mutex m_mutex;  // guards what follows, until the last photo has ended
  std::size_t m_remaining;
  bool m_needsFlush = false;
  ExportFailures m_failures;
};

}  // namespace snaplift
