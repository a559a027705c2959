#include "app/BackupPhotos.h"

#include "foundation/files/Path.h"

namespace snaplift {

template <class Read>
auto BackupPhoto::waitingFor(const Read& read) const {
  std::optional<DiskWatch::Waiting> waiting;
  if (m_disks) {
    waiting.emplace(*m_disks, m_backupFolder);
  }
  return read();
}

std::optional<Bytes> BackupPhoto::imageRepresentation() const {
  return tellingUnreadable(waitingFor([this] { return m_item.imageRepresentation(); }));
}

std::optional<Bytes> BackupPhoto::imageBeginning(std::size_t size) const {
  return tellingUnreadable(waitingFor([&] { return m_item.imageBeginning(size); }));
}

std::optional<Bytes> BackupPhoto::imageThumbnail() const {
  return waitingFor([this] { return m_item.thumbnail(); });
}

std::optional<std::chrono::milliseconds> BackupPhoto::filmLength() const {
  return waitingFor([this] { return m_item.filmLength(); });
}

std::optional<Bytes> BackupPhoto::tellingUnreadable(std::optional<Bytes> bytes) const {
  if (!bytes && m_disks) {
    m_disks->suspect(m_backupFolder);
  }
  return bytes;
}

ImageBrowserItem::Content BackupPhoto::imageContent() const {
  switch (waitingFor([this] { return m_item.contentState(); })) {
    case ContentState::Whole:
      return Content::Whole;
    case ContentState::Short:
      return Content::Short;
    case ContentState::Unreadable:
      return Content::Unreadable;
    case ContentState::Missing:
      break;
  }
  return Content::Missing;
}

bool BackupPhoto::isThumbnailFirst() const {
  const std::string type = m_item.imageFileType();
  return equalsIgnoringCase(type, "heic") || equalsIgnoringCase(type, "heif");
}

std::string BackupPhoto::imageOrigin() const {
  return std::string(parentPath(m_item.path().substr(m_backupFolder.size() + 1)));
}

int BackupPhotos::numberOfItemsInImageBrowser(const ImageBrowserView&) const {
  return m_content ? static_cast<int>(m_content->imageItems().size()) : 0;
}

ImageBrowserItemPointer BackupPhotos::imageBrowserItemAtIndex(const ImageBrowserView&,
                                                              int index) const {
  return std::make_shared<BackupPhoto>(*m_content->imageItems()[static_cast<std::size_t>(index)],
                                       m_content->path(), m_disks);
}

}  // namespace snaplift
