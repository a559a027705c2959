#include "app/BackupPhotos.h"

#include "foundation/Path.h"

namespace snaplift {
namespace {

class BackupPhoto : public ImageBrowserItem {
public:
  BackupPhoto(const ImageItem& item, const std::string& backupFolder)
      : m_item(item), m_backupFolder(backupFolder) {}

  std::string imageUID() const override { return m_item.imageUID(); }
  std::string imageTitle() const override { return m_item.imageTitle(); }
  std::optional<Bytes> imageRepresentation() const override { return m_item.imageRepresentation(); }
  // The folder on the device.
  std::string imageOrigin() const override {
    return std::string(parentPath(m_item.path().substr(m_backupFolder.size() + 1)));
  }

private:
  const ImageItem& m_item;
  const std::string& m_backupFolder;
};

}  // namespace

int BackupPhotos::numberOfItemsInImageBrowser(const ImageBrowserView&) const {
  return m_content ? static_cast<int>(m_content->imageItems().size()) : 0;
}

ImageBrowserItemPointer BackupPhotos::imageBrowserItemAtIndex(const ImageBrowserView&,
                                                              int index) const {
  return std::make_shared<BackupPhoto>(
      *m_content->imageItems()[static_cast<std::size_t>(index)], m_content->path());
}

}  // namespace snaplift
