#include "decoders/iOS5Decoder.h"

#include <utility>

#include "decoders/ManifestPhoto.h"
#include "decoders/PhotoSuffix.h"

namespace snaplift {

iOS5BackupReader& iOS5Decoder::reader() {
  if (!m_reader) {
    m_reader = std::make_unique<iOS5BackupReader>(backupPath());
  }
  return *m_reader;
}

void iOS5Decoder::loadContents(std::stop_token stop) {
  const bool encrypted = readFlagOfEncryption();
  const auto* cameraRoll = reader().records(stop).entriesOf("CameraRollDomain");
  if (stop.stop_requested()) {
    return;
  }
  if (!reader().hasWholeManifest()) {
    noteDamageOf(joinPath(backupPath(), "Manifest.mbdb"));
  }
  Found found;
  if (cameraRoll) {
    for (const ManifestRecord& record : *cameraRoll) {
      const std::string_view path = record.path();
      keep(record, path, endsLikePhoto(path), found);
    }
  }
  setContents(encrypted, std::move(found));
}

void iOS5Decoder::visitFiles(const FileVisitor& visit) {
  for (const auto& [domain, records] : reader().records().map()) {
    for (const ManifestRecord& record : records) {
      const std::string filename = record.filename();
      visit({domain, record.path(), filename, record.filelength(), record.modificationDate(), {}});
    }
  }
}

std::string iOS5Decoder::contentFileName(const ManifestRecord& photo) const {
  return photo.filename();
}

PhotoInfo iOS5Decoder::infoOf(const ManifestRecord& photo) const {
  return infoOfRecord(photo);
}

}  // namespace snaplift
