#include "app/photos/BackupPhotos.h"

#include <QCoreApplication>
#include <QStringList>
#include <numeric>

#include "app/details/DetailsText.h"
#include "foundation/files/Path.h"

namespace snaplift {

std::string BackupPhoto::imageSubtitle() const {
  const std::optional<Instant> date = m_item.info().date();
  return date ? mediumDateText(*date) : std::string();
}

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

std::string BackupPhoto::imageDescription(std::int64_t readBytes) const {
  const PhotoInfo info = m_item.info();
  const std::uint64_t size = info.size.value_or(static_cast<std::uint64_t>(readBytes));
  QStringList kind{detailsText::kind(info.kind)};
  if (size > 0) {
    kind.prepend(detailsText::bytes(size));
  }
  QStringList lines{kind.join(", "), detailsText::devicePath(info)};
  if (const std::optional<Instant> date = info.date()) {
    lines.prepend(detailsText::date(detailsText::localDate(*date)));
  }
  return lines.join('\n').toStdString();
}

void BackupPhotos::setContent(BackupModel* backup) {
  m_content = backup;
  std::vector<ImageItem*> photos;
  if (backup) {
    photos.reserve(backup->imageItems().size());
    for (const auto& item : backup->imageItems()) {
      if (!backup->livePhotos().isPart(*item)) {
        photos.push_back(item.get());
      }
    }
  }
  m_arrangement.setPhotos(std::move(photos));
}

std::vector<ImageItem*> BackupPhotos::photosAtIndexes(const std::vector<int>& indexes) const {
  std::vector<ImageItem*> photos;
  for (const int index : indexes) {
    if (index >= 0 && index < m_arrangement.count()) {
      photos.push_back(&m_arrangement.photoAt(index));
    }
  }
  return m_content ? m_content->livePhotos().withFilms(photos) : photos;
}

std::vector<ImageItem*> BackupPhotos::shownPhotos() const {
  std::vector<int> indexes(static_cast<std::size_t>(m_arrangement.count()));
  std::iota(indexes.begin(), indexes.end(), 0);
  return photosAtIndexes(indexes);
}

int BackupPhotos::numberOfItemsInImageBrowser(const ImageBrowserView&) const {
  return m_arrangement.count();
}

ImageBrowserItemPointer BackupPhotos::imageBrowserItemAtIndex(const ImageBrowserView&,
                                                              int index) const {
  ImageItem& photo = m_arrangement.photoAt(index);
  return std::make_shared<BackupPhoto>(photo, m_content->path(), m_disks,
                                       m_content->livePhotos().filmOf(photo));
}

std::vector<ImageBrowserGroup> BackupPhotos::groupsOfItemsInImageBrowser(
    const ImageBrowserView&) const {
  std::vector<ImageBrowserGroup> groups;
  for (const PhotoArrangement::Month& month : m_arrangement.months()) {
    const std::string title =
        month.date ? monthTitle(*month.date)
                   : QCoreApplication::translate("BackupPhotos", "Undated").toStdString();
    groups.push_back({title, month.count});
  }
  return groups;
}

}  // namespace snaplift
