#include "app/ExportBatch.h"

#include "foundation/FileWriting.h"
#include "foundation/Log.h"

namespace snaplift {

ExportBatch::ExportBatch(std::string destination, std::size_t photoCount, Report report)
    : m_destination(std::move(destination)), m_report(std::move(report)), m_remaining(photoCount) {
  m_failures.photoCount = photoCount;
}

void ExportBatch::extract(ImageItem& photo) {
  if (noteEnd(photo, photo.extract(m_destination))) {
    return;
  }
  flush();
  if (m_failures.failedCount > 0 || m_failures.onFlush) {
    m_report(m_failures);
  }
}

// Whether other photos are still to end.
bool ExportBatch::noteEnd(const ImageItem& photo, const std::optional<FileError>& error) {
  const std::lock_guard lock(m_mutex);
  if (!error) {
    m_needsFlush = true;
  } else if (++m_failures.failedCount <= ExportFailures::toldPhotos) {
    m_failures.first.push_back({photo.fileName(), *error});
  }
  return --m_remaining > 0;
}

void ExportBatch::flush() {
  if (!m_needsFlush) {
    return;
  }
  m_needsFlush = false;
  m_failures.onFlush = flushFileSystem(m_destination);
  if (m_failures.onFlush) {
    systemLog("failed to bring the exported photos to the disk: " +
              m_failures.onFlush->description());
  }
}

}  // namespace snaplift
