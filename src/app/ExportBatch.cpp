#include "app/ExportBatch.h"

#include "foundation/FileWriting.h"
#include "foundation/Log.h"

namespace snaplift {

void ExportBatch::extract(ImageItem& photo) {
  if (photo.extract(m_destination)) {
    m_needsFlush = true;
  }
  if (--m_remaining == 0) {
    flush();
  }
}

void ExportBatch::flush() {
  if (!m_needsFlush.exchange(false)) {
    return;
  }
  if (const auto error = flushFileSystem(m_destination)) {
    systemLog("failed to bring the exported photos to the disk: " + error->description());
  }
}

}  // namespace snaplift
