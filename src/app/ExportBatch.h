#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <utility>

#include "library/ImageItem.h"

namespace snaplift {

// The photos that one command exports into one folder. It exists so that they are on the disk when
// the window says that the export is over: whoever extracts the last of them flushes the folder's
// file system before the operation ends. The flush is no operation of its own, which the status
// text would count as a photo; and it never runs on the user interface's thread, where no photo is
// extracted.
//
// The operations share it. Of an export that is stopped, the last operation to go does the flush.
class ExportBatch {
public:
  ExportBatch(std::string destination, std::size_t photoCount)
      : m_destination(std::move(destination)), m_remaining(photoCount) {}
  ExportBatch(const ExportBatch&) = delete;
  ExportBatch& operator=(const ExportBatch&) = delete;
  ~ExportBatch() { flush(); }

  // To be called once for each photo, on any thread. Failures are lines in the system log.
  void extract(ImageItem& photo);

private:
  void flush();

  const std::string m_destination;
  std::atomic<std::size_t> m_remaining;
  std::atomic<bool> m_needsFlush = false;
};

}  // namespace snaplift
