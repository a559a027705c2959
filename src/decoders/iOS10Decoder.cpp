#include "decoders/iOS10Decoder.h"

#include <utility>

namespace snaplift {
namespace {

constexpr std::string_view photoDomain = "CameraRollDomain";
constexpr std::int64_t regularFileFlag = 1;

bool isFile(const DatabaseRow& row) {
  return row.flags.value_or(regularFileFlag) == regularFileFlag && !row.relativePath.empty();
}

}  // namespace

void iOS10Decoder::loadContents(std::stop_token stop) {
  if (readFlagOfEncryption()) {
    setContents(true, {});
    return;
  }
  m_texts.release();
  m_textsOfThumbnails.release();
  DatabaseFiles photos(backupPath(), m_texts, true);
  DatabaseFiles thumbnails(backupPath(), m_textsOfThumbnails, true);
  ManifestDatabase database(backupPath(), stop);
  const bool isWhole = database.visitRows(photoDomain, [&](const DatabaseRow& row) {
    if (isFile(row) && isInCameraRoll(row.relativePath)) {
      photos.add(row);
    } else if (isFile(row) && !mediaOfThumbnail(row.relativePath).empty()) {
      thumbnails.add(row);
    }
  });
  if (stop.stop_requested()) {
    return;
  }
  if (!isWhole) {
    noteDamageOf(joinPath(backupPath(), "Manifest.db"));
  }
  setContents(false, {.photos = photos.take(), .thumbnails = thumbnails.take()});
}

void iOS10Decoder::visitFiles(const FileVisitor& visit) {
  if (readFlagOfEncryption()) {
    return;
  }
  DatabaseFiles::Texts texts;
  DatabaseFiles files(backupPath(), texts, false);
  const bool isWhole =
      ManifestDatabase(backupPath()).visitRows(std::nullopt, [&](const DatabaseRow& row) {
        if (isFile(row)) {
          files.add(row);
        }
      });
  if (!isWhole) {
    noteDamageOf(joinPath(backupPath(), "Manifest.db"));
  }
  for (const DatabaseFile& file : files.take()) {
    if (file.size != 0) {
      visit({file.domain,
             file.path,
             file.contentFileName(),
             file.size.value_or(0),
             infoOf(file).modificationDate,
             {}});
    }
  }
}

std::string iOS10Decoder::contentFileName(const DatabaseFile& photo) const {
  return photo.contentFileName();
}

PhotoInfo iOS10Decoder::infoOf(const DatabaseFile& photo) const {
  PhotoInfo info = PhotoInfo::ofPath(photo.path);
  info.size = photo.size;
  info.modificationDate = knownTime(instantFromUnixTime(photo.lastModified));
  info.birthDate = knownTime(instantFromUnixTime(photo.birth));
  return info;
}

}  // namespace snaplift
