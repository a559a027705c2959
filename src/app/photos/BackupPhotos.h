#pragma once

#include "app/DiskWatch.h"
#include "backups/BackupModel.h"
#include "widgets/photogrid/ImageBrowserViewDataSource.h"

namespace snaplift {

// One photo of a backup as the photo browser shows it. Who waits for its bytes, and whether they
// came, is told to `disks`, if there is one. Nothing of this is owned.
class BackupPhoto : public ImageBrowserItem {
public:
  BackupPhoto(ImageItem& item, const std::string& backupFolder, DiskWatch* disks)
      : m_item(item), m_backupFolder(backupFolder), m_disks(disks) {}

  ImageItem& item() const { return m_item; }

  std::string imageUID() const override { return m_item.imageUID(); }
  std::string imageTitle() const override { return m_item.imageTitle(); }
  std::optional<Bytes> imageRepresentation() const override;
  std::optional<Bytes> imageBeginning(std::size_t size) const override;
  std::optional<Bytes> imageThumbnail() const override;
  // Of photos that are slow to decode.
  bool isThumbnailFirst() const override;
  bool isFilm() const override { return m_item.info().media == PhotoMedia::Film; }
  std::optional<std::chrono::milliseconds> filmLength() const override;
  Content imageContent() const override;
  // The folder on the device.
  std::string imageOrigin() const override;

private:
  template <class Read>
  auto waitingFor(const Read& read) const;
  std::optional<Bytes> tellingUnreadable(std::optional<Bytes> bytes) const;

  ImageItem& m_item;
  const std::string& m_backupFolder;
  DiskWatch* const m_disks;
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
  void setDisks(DiskWatch& disks) { m_disks = &disks; }

  int numberOfItemsInImageBrowser(const ImageBrowserView& browser) const override;
  ImageBrowserItemPointer imageBrowserItemAtIndex(const ImageBrowserView& browser,
                                                  int index) const override;

private:
  BackupModel* m_content = nullptr;
  DiskWatch* m_disks = nullptr;
};

}  // namespace snaplift
