#include "app/TemporaryPhotos.h"

#include <QEventLoop>
#include <map>
#include <utility>

#include "foundation/Log.h"
#include "foundation/files/NumberedName.h"
#include "foundation/files/Path.h"
#include "foundation/files/TemporaryFolder.h"

namespace snaplift {

const std::vector<std::string>& TemporaryPhotos::paths() {
  prepare();
  return m_isWritten ? m_written : m_expected;
}

void TemporaryPhotos::prepare() {
  if (m_job || temporaryFolder().empty()) {
    return;
  }
  static int lists = 0;  // receivers of one may still copy when the next is asked for
  const std::string folder = "photos-" + std::to_string(++lists);
  std::map<std::string, std::uint64_t> photosOfName;
  std::vector<PhotoToExport> photos;
  photos.reserve(m_photos.size());
  for (const ImageItem* photo : m_photos) {
    // Beyond them a folder is full of a name.
    const auto full = photosOfName[photo->fileName()]++ / (maximumNumberedNames + 1);
    photos.push_back({photo, joinPath(folder, full == 0 ? "" : std::to_string(full))});
  }
  m_job = std::make_unique<ExportJob>(std::move(photos), temporaryFolder(),
                                      ExportOptions{.flushes = false},
                                      static_cast<ExportObserver&>(*this));
  m_expected = m_job->expectedPaths();
}

void TemporaryPhotos::write() {
  prepare();
  if (!m_job) {  // a path would be a name in the process's current folder
    m_failures.clear();
    for (const ImageItem* photo : m_photos) {
      ExportedPhoto failure;
      failure.photo = photo;
      failure.error = FileError::missing("temporary folder");
      m_failures.push_back(failure);
    }
    tellFailures();
    return;
  }
  if (!std::exchange(m_isBegun, true)) {
    m_job->start();
  }
  if (!m_isWritten) {
    QEventLoop loop;
    connect(this, &TemporaryPhotos::written, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
  }
  if (!m_isWritten) {  // the application quits
    m_job->stop();
  }
  m_job->wait();
  m_isWritten = true;
}

void TemporaryPhotos::photoDidEnd(const ExportedPhoto& photo) {
  if (photo.error) {
    systemLog("failed (0) to extract the file: " + photo.error->description());
    m_failures.push_back(photo);
  } else {
    m_written.push_back(photo.written);
  }
}

void TemporaryPhotos::exportDidEnd(const ExportSummary&) {
  QMetaObject::invokeMethod(
      this,
      [this] {
        m_isWritten = true;
        tellFailures();
        emit written();
      },
      Qt::QueuedConnection);
}

void TemporaryPhotos::tellFailures() {
  if (const Failed failed = std::exchange(m_failed, nullptr); failed && !m_failures.empty()) {
    failed(m_failures);
  }
}

}  // namespace snaplift
