#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "decoders/BackupDecoderDelegate.h"
#include "decoders/BackupPropertyList.h"
#include "foundation/Log.h"
#include "foundation/Parallel.h"
#include "foundation/files/File.h"
#include "foundation/files/Path.h"

namespace snaplift {

// What all decoders do alike: they keep one record for each photo, list the records' unique paths,
// and find a record by its unique path through a hash index, so that exporting n photos costs n
// look-ups. `Record` has uniquePath(). A decoder fills the lists in its loadContents() and says
// what a record knows and where its content lies.
template <class Record>
class PhotoDecoder : public BackupDecoderDelegate {
public:
  explicit PhotoDecoder(std::string backupPath) : m_backupPath(std::move(backupPath)) {}
  PhotoDecoder(const PhotoDecoder&) = delete;
  PhotoDecoder& operator=(const PhotoDecoder&) = delete;

  const std::vector<std::string>& imageFilePaths() override {
    if (!m_loaded) {
      loadContents();
    }
    return m_imageFilePaths;
  }

  const std::vector<std::string>& otherMediaPaths() override {
    imageFilePaths();
    return m_otherMediaPaths;
  }

  std::optional<Bytes> dataForFileAtPath(const std::string& uniquePath,
                                         Bytes reuse = {}) const override {
    const Record* photo = photoAtPath(uniquePath);
    return photo ? dataOf(*photo, std::move(reuse)) : std::nullopt;
  }

  std::string contentFileAtPath(const std::string& uniquePath) const override {
    const Record* photo = photoAtPath(uniquePath);
    return photo ? contentFileOf(*photo) : std::string();
  }

  PhotoInfo photoInfo(std::size_t index) const override {
    return index < m_photos.size() ? infoOf(m_photos[index]) : PhotoInfo();
  }

  ContentState contentState(std::size_t index) const override {
    return index < m_photos.size() ? stateOf(m_photos[index]) : ContentState::Missing;
  }

  std::optional<Bytes> thumbnailData(std::size_t index) const override {
    const Record* thumbnail = thumbnailOf(photoInfo(index).devicePath);
    return thumbnail ? dataOf(*thumbnail, {}) : std::nullopt;
  }

  bool encrypted() const override { return m_encrypted; }
  bool isComplete() const override { return m_damagedFiles == 0; }

protected:
  // What a load finds, each in the decoder's order.
  struct Found {
    std::vector<Record> photos;           // what the generation calls photos
    std::vector<Record> others = {};      // the films and pictures of the camera roll besides
    std::vector<Record> thumbnails = {};  // that the device made of photos and films, in any order
  };

  // Sorts a record of the photos' domain into what is found.
  static void keep(const Record& record, std::string_view path, bool isPhoto, Found& found) {
    if (isPhoto) {
      found.photos.push_back(record);
    } else if (isInCameraRoll(path)) {
      found.others.push_back(record);
    }
    if (!mediaOfThumbnail(path).empty()) {
      found.thumbnails.push_back(record);
    }
  }

  // To be called where a file that photos are listed from is not there, cannot be read, or ends
  // before its end. On any thread.
  void noteDamageOf(const std::string& path) const {
    const unsigned before = m_damagedFiles++;
    if (before < mostDamagedFilesNamed) {
      systemLog("cannot read, photos may be missing: " + path);
    } else if (before == mostDamagedFilesNamed) {
      systemLog("cannot read more files than are named here: " + m_backupPath);
    }
  }

  // What "manifest.plist" says, for generations whose photos it does not list: without it nothing
  // counts as encrypted, and only one that is there and damaged is noted.
  bool readFlagOfEncryption() const {
    const auto manifest = readDictionary(m_backupPath, "manifest.plist");
    const std::string path = manifest ? std::string() : findFile(m_backupPath, "manifest.plist");
    if (!manifest && fileAttributes(path)) {
      noteDamageOf(path);
    }
    return isEncrypted(manifest);
  }

  const std::string& backupPath() const { return m_backupPath; }

  // The name of the record's content file inside the backup folder; empty where it can have none.
  virtual std::string contentFileName(const Record& photo) const = 0;

  // The path of the file that is the record's content and nothing else; empty where there is none.
  virtual std::string contentFileOf(const Record& photo) const {
    const std::string name = contentFileName(photo);
    return name.empty() ? std::string() : joinPath(m_backupPath, name);
  }

  virtual std::optional<Bytes> dataOf(const Record& photo, Bytes reuse) const {
    const std::string name = contentFileName(photo);
    return name.empty() ? std::nullopt : readFile(joinPath(m_backupPath, name), std::move(reuse));
  }

  virtual PhotoInfo infoOf(const Record& photo) const = 0;

  // An encrypted content file is longer than its photo.
  virtual ContentState stateOf(const Record& photo) const {
    const std::string name = contentFileName(photo);
    const auto size = m_encrypted ? std::nullopt : infoOf(photo).size;
    return name.empty() ? ContentState::Missing
                        : contentStateOfFile(joinPath(m_backupPath, name), size);
  }

  // The photo's record; of several of one unique path the last. Null where there is none.
  const Record* photoAtPath(std::string_view uniquePath) const {
    const std::size_t hash = hashOf(uniquePath);
    auto place = std::upper_bound(m_index.begin(), m_index.end(), Place(hash, m_photos.size()));
    while (place != m_index.begin() && (--place)->first == hash) {
      if (pathAt(*this, place->second) == uniquePath) {
        return &m_photos[place->second];
      }
    }
    return nullptr;
  }

  // Ends a load with all that it has found out.
  void setContents(bool encrypted, Found found) {
    m_encrypted = encrypted;
    m_imageFilePaths.assign(found.photos.size(), {});
    m_otherMediaPaths.assign(found.others.size(), {});
    m_photos = std::move(found.photos);
    std::ranges::move(found.others, std::back_inserter(m_photos));
    m_index.assign(m_photos.size(), {});
    parallelFor(m_photos.size(), threadsForPaths, [this](std::size_t i) {
      pathAt(*this, i) = m_photos[i].uniquePath();
      m_index[i] = {hashOf(pathAt(*this, i)), i};
    });
    std::ranges::sort(m_index);
    m_thumbnails = std::move(found.thumbnails);
    indexThumbnails();
    m_loaded = true;
  }

private:
  static constexpr unsigned threadsForPaths = 2;
  static constexpr unsigned mostDamagedFilesNamed = 100;  // in the log

  static std::size_t hashOf(std::string_view text) { return std::hash<std::string_view>()(text); }

  // By a photo's place in m_photos.
  template <class Self>
  static auto& pathAt(Self& self, std::size_t index) {
    const std::size_t listed = self.m_imageFilePaths.size();
    return index < listed ? self.m_imageFilePaths[index] : self.m_otherMediaPaths[index - listed];
  }

  void indexThumbnails() {
    m_thumbnailIndex.clear();
    m_thumbnailIndex.reserve(m_thumbnails.size());
    for (std::size_t i = 0; i < m_thumbnails.size(); ++i) {
      const PhotoInfo info = infoOf(m_thumbnails[i]);
      m_thumbnailIndex.push_back({mediaOfThumbnail(info.devicePath), info.size.value_or(0), i});
    }
    std::ranges::sort(m_thumbnailIndex, [](const ThumbnailPlace& a, const ThumbnailPlace& b) {
      return std::tie(a.media, b.size, a.place) < std::tie(b.media, a.size, b.place);
    });
  }

  // Of several the one with the most bytes. Null where the device made none.
  const Record* thumbnailOf(std::string_view devicePath) const {
    constexpr std::string_view media = "Media/";
    if (!devicePath.starts_with(media)) {
      return nullptr;
    }
    devicePath.remove_prefix(media.size());
    const auto found =
        std::ranges::lower_bound(m_thumbnailIndex, devicePath, {}, &ThumbnailPlace::media);
    return found != m_thumbnailIndex.end() && found->media == devicePath
               ? &m_thumbnails[found->place]
               : nullptr;
  }

  const std::string m_backupPath;
  std::vector<Record> m_photos;  // and behind them the other media
  std::vector<std::string> m_imageFilePaths;
  std::vector<std::string> m_otherMediaPaths;
  std::vector<Record> m_thumbnails;
  struct ThumbnailPlace {
    std::string_view media;  // see mediaOfThumbnail()
    std::uint64_t size;
    std::size_t place;  // in m_thumbnails
  };
  std::vector<ThumbnailPlace> m_thumbnailIndex;  // sorted
  using Place = std::pair<std::size_t, std::size_t>;
  std::vector<Place> m_index;  // sorted: the hash of a unique path, and its place in the lists
  mutable std::atomic<unsigned> m_damagedFiles = 0;
  bool m_encrypted = false;
  bool m_loaded = false;
};

}  // namespace snaplift
