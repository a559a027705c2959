#include "app/BackupPhotos.h"

#include "foundation/Path.h"

namespace snaplift {

std::string BackupPhoto::imageOrigin() const {
  return std::string(parentPath(m_item.path().substr(m_backupFolder.size() + 1)));
}

int BackupPhotos::numberOfItemsInImageBrowser(const ImageBrowserView&) const {
  return m_content ? static_cast<int>(m_content->imageItems().size()) : 0;
}

ImageBrowserItemPointer BackupPhotos::imageBrowserItemAtIndex(const ImageBrowserView&,
                                                              int index) const {
  return std::make_shared<BackupPhoto>(*m_content->imageItems()[static_cast<std::size_t>(index)],
                                       m_content->path());
}

}  // namespace snaplift
