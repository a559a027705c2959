#pragma once

#include <functional>
#include <utility>

#include "backups/BackupModel.h"
#include "widgets/photogrid/ImageBrowserViewDataSource.h"

namespace snaplift {

// One photo of a backup as the photo browser shows it. The item is not owned.
class BackupPhoto : public ImageBrowserItem {
public:
  // Told of the backup of a photo that could not be read, on the thread that read it.
  using Unreadable = std::function<void(const std::string& backupFolder)>;

  BackupPhoto(ImageItem& item, const std::string& backupFolder, const Unreadable& unreadable)
      : m_item(item), m_backupFolder(backupFolder), m_unreadable(unreadable) {}

  ImageItem& item() const { return m_item; }

  std::string imageUID() const override { return m_item.imageUID(); }
  std::string imageTitle() const override { return m_item.imageTitle(); }
  std::optional<Bytes> imageRepresentation() const override;
  std::optional<Bytes> imageBeginning(std::size_t size) const override;
  std::optional<Bytes> imageThumbnail() const override { return m_item.thumbnail(); }
  // Of photos that are slow to decode.
  bool isThumbnailFirst() const override;
  bool isFilm() const override { return m_item.info().media == PhotoMedia::Film; }
  std::optional<std::chrono::milliseconds> filmLength() const override {
    return m_item.filmLength();
  }
  Content imageContent() const override;
  // The folder on the device.
  std::string imageOrigin() const override;

private:
  std::optional<Bytes> tellingUnreadable(std::optional<Bytes> bytes) const;

  ImageItem& m_item;
  const std::string& m_backupFolder;
  const Unreadable& m_unreadable;
};

// The photos of one backup as the photo browser shows them: exactly the backup's `imageItems`, in
// their order. The backup is not owned; it outlives the browser and its workers, which is why the
// items that are handed out need keep nothing alive. The user interface's thread only, the items
// apart.
class BackupPhotos : public ImageBrowserViewDataSource {
public:
  // The backup whose photos are shown; null for none. Whoever sets it reloads the browser.
  BackupModel* content() const { return m_content; }
  void setContent(BackupModel* backup) { m_content = backup; }
  // To be set before there is a content.
  void setUnreadable(BackupPhoto::Unreadable unreadable) { m_unreadable = std::move(unreadable); }

  int numberOfItemsInImageBrowser(const ImageBrowserView& browser) const override;
  ImageBrowserItemPointer imageBrowserItemAtIndex(const ImageBrowserView& browser,
                                                  int index) const override;

private:
  BackupModel* m_content = nullptr;
  BackupPhoto::Unreadable m_unreadable = [](const std::string&) {};
};

}  // namespace snaplift
