#pragma once

#include <vector>

#include "app/disks/DiskWatch.h"
#include "backups/BackupModel.h"
#include "photos/PhotoArrangement.h"
#include "widgets/photogrid/ImageBrowserViewDataSource.h"

namespace snaplift {

// One photo of a backup as the photo browser shows it. Who waits for its bytes, and whether they
// came, is told to `disks`, if there is one. Nothing of this is owned.
class BackupPhoto : public ImageBrowserItem {
public:
  // `film` is that of a live photo, or null.
  BackupPhoto(ImageItem& item, const std::string& backupFolder, DiskWatch* disks,
              ImageItem* film = nullptr)
      : m_item(item), m_film(film), m_backupFolder(backupFolder), m_disks(disks) {}

  ImageItem& item() const { return m_item; }
  ImageItem* film() const { return m_film; }

  std::string imageUID() const override { return m_item.imageUID(); }
  std::string imageTitle() const override { return m_item.imageTitle(); }
  // The date.
  std::string imageSubtitle() const override;
  std::optional<Bytes> imageRepresentation() const override;
  std::optional<Bytes> imageBeginning(std::size_t size) const override;
  std::optional<Bytes> imageThumbnail() const override;
  // Of photos that are slow to decode.
  bool isThumbnailFirst() const override;
  bool isFilm() const override { return m_item.info().media == PhotoMedia::Film; }
  std::optional<std::chrono::milliseconds> filmLength() const override;
  bool isLivePhoto() const override { return m_film != nullptr; }
  Content imageContent() const override;
  // Date, size, kind and place on the device.
  std::string imageDescription(std::int64_t readBytes) const override;

private:
  template <class Read>
  auto waitingFor(const Read& read) const;
  std::optional<Bytes> tellingUnreadable(std::optional<Bytes> bytes) const;

  ImageItem& m_item;
  ImageItem* m_film;
  const std::string& m_backupFolder;
  DiskWatch* const m_disks;
};

// The photos of one backup as the photo browser shows them: as they are wished for, in groups for
// months where those are wished for, and else the backup's `imageItems` in their order, without the
// films of live photos, which go wherever their photos do. Indexes are those of the browser
// everywhere; nobody else knows which photo is meant by one. The backup is not owned; it outlives
// the browser and its workers, which is why the items that are handed out need keep nothing alive.
// The user interface's thread only, the items apart.
class BackupPhotos : public ImageBrowserViewDataSource {
public:
  // The backup whose photos are shown; null for none. Whoever sets it, or changes its list, reloads
  // the browser; wishes stay.
  BackupModel* content() const { return m_content; }
  void setContent(BackupModel* backup);
  // To be set before there is a content.
  void setDisks(DiskWatch& disks) { m_disks = &disks; }

  // What is shown, and what is not.
  const PhotoArrangement& arrangement() const { return m_arrangement; }
  // Whoever sets them rearranges the browser: the answer is where each of its indexes is now.
  std::vector<int> setWishes(const PhotoWishes& wishes) { return m_arrangement.setWishes(wishes); }

  // Those of `indexes` that there are; and all that are shown; with the films of live photos.
  std::vector<ImageItem*> photosAtIndexes(const std::vector<int>& indexes) const;
  std::vector<ImageItem*> shownPhotos() const;

  int numberOfItemsInImageBrowser(const ImageBrowserView& browser) const override;
  ImageBrowserItemPointer imageBrowserItemAtIndex(const ImageBrowserView& browser,
                                                  int index) const override;
  std::vector<ImageBrowserGroup> groupsOfItemsInImageBrowser(
      const ImageBrowserView& browser) const override;

private:
  BackupModel* m_content = nullptr;
  DiskWatch* m_disks = nullptr;
  PhotoArrangement m_arrangement;
};

}  // namespace snaplift
