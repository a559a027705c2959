#include "app/TemporaryPhotos.h"

#include <QEventLoop>
#include <map>
#include <utility>

#include "foundation/Log.h"
#include "foundation/files/Path.h"
#include "foundation/files/TemporaryFolder.h"

namespace snaplift {

TemporaryPhotos::TemporaryPhotos(const std::vector<ImageItem*>& photos, Failed failed)
    : m_failed(std::move(failed)) {
  // A folder of its own for each further photo of one name: files keep the photos' names.
  std::map<std::string, int> photosOfName;
  for (const ImageItem* photo : photos) {
    const int namesake = photosOfName[photo->fileName()]++;
    m_photos.push_back({photo, namesake == 0 ? std::string() : std::to_string(namesake)});
  }
}

const std::vector<std::string>& TemporaryPhotos::paths() {
  if (temporaryFolder().empty()) {  // the path would be a name in the process's current folder
    m_failures.clear();
    for (const PhotoToExport& photo : m_photos) {
      ExportedPhoto failure;
      failure.photo = photo.photo;
      failure.error = FileError::missing("temporary folder");
      m_failures.push_back(failure);
    }
    tellFailures();
    return m_paths;
  }
  begin();
  if (!m_isWritten) {
    QEventLoop loop;
    connect(this, &TemporaryPhotos::written, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
  }
  if (!m_isWritten) {  // the application quits
    m_job->stop();
  }
  m_job->wait();
  return m_paths;
}

void TemporaryPhotos::begin() {
  if (m_job) {
    return;
  }
  static int copies = 0;
  const std::string folder = "copy-" + std::to_string(++copies);
  for (PhotoToExport& photo : m_photos) {
    photo.folder = joinPath(folder, photo.folder);
  }
  m_job = std::make_unique<ExportJob>(m_photos, temporaryFolder(), ExportOptions{.flushes = false},
                                      static_cast<ExportObserver&>(*this));
  m_job->start();
}

void TemporaryPhotos::photoDidEnd(const ExportedPhoto& photo) {
  if (photo.error) {
    systemLog("failed (0) to extract the file: " + photo.error->description());
    m_failures.push_back(photo);
  } else {
    m_paths.push_back(photo.written);
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
