#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "decoders/BackupDecoderDelegate.h"
#include "foundation/File.h"
#include "foundation/Path.h"

namespace snaplift {

// What the four decoders do alike: they keep one record for each photo, list the records' unique
// paths, and find a record by its unique path through a hash index, so that exporting n photos
// costs n look-ups. `Record` has uniquePath(). A decoder fills the list in its loadContents() and
// says where a record's content lies.
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

  std::optional<Bytes> dataForFileAtPath(const std::string& uniquePath,
                                         Bytes reuse = {}) const override {
    const Record* photo = photoAtPath(uniquePath);
    return photo ? dataOf(*photo, std::move(reuse)) : std::nullopt;
  }

  bool holdsFileAtPath(const std::string& uniquePath) const override {
    const Record* photo = photoAtPath(uniquePath);
    return photo && holdsFileOf(*photo);
  }

  bool encrypted() const override { return m_encrypted; }

protected:
  const std::string& backupPath() const { return m_backupPath; }

  // The name of the record's content file inside the backup folder; empty where it can have none.
  virtual std::string contentFileName(const Record& photo) const = 0;

  virtual std::optional<Bytes> dataOf(const Record& photo, Bytes reuse) const {
    const std::string name = contentFileName(photo);
    return name.empty() ? std::nullopt : readFile(joinPath(m_backupPath, name), std::move(reuse));
  }

  virtual bool holdsFileOf(const Record& photo) const {
    const std::string name = contentFileName(photo);
    const auto attributes = fileAttributes(joinPath(m_backupPath, name));
    return !name.empty() && attributes && attributes->type == FileType::Regular;
  }

  void setEncrypted(bool encrypted) { m_encrypted = encrypted; }

  // Ends a load. Of several records of one unique path the last answers for it.
  void setPhotos(std::vector<Record> photos) {
    m_photos = std::move(photos);
    m_imageFilePaths.clear();
    m_imageFilePaths.reserve(m_photos.size());
    for (const Record& photo : m_photos) {
      m_imageFilePaths.push_back(photo.uniquePath());
    }
    m_photoAtPath.clear();
    m_photoAtPath.reserve(m_photos.size());
    for (std::size_t i = 0; i < m_photos.size(); ++i) {
      m_photoAtPath.insert_or_assign(m_imageFilePaths[i], i);
    }
    m_loaded = true;
  }

private:
  const Record* photoAtPath(std::string_view uniquePath) const {
    const auto found = m_photoAtPath.find(uniquePath);
    return found == m_photoAtPath.end() ? nullptr : &m_photos[found->second];
  }

  const std::string m_backupPath;
  std::vector<Record> m_photos;
  std::vector<std::string> m_imageFilePaths;
  std::unordered_map<std::string_view, std::size_t> m_photoAtPath;  // keys in m_imageFilePaths
  bool m_encrypted = false;
  bool m_loaded = false;
};

}  // namespace snaplift
