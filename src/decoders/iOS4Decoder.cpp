#include "decoders/iOS4Decoder.h"

#include <utility>

#include "decoders/ManifestPhoto.h"
#include "decoders/PhotoSuffix.h"

namespace snaplift {

const MBDBXReader& iOS4Decoder::reader(std::stop_token stop) {
  if (!m_reader) {
    m_reader = std::make_unique<MBDBXReader>(backupPath(), stop);
    if (!m_reader->mbdb().isWhole()) {
      noteDamageOf(joinPath(backupPath(), "Manifest.mbdb"));
    }
  }
  return *m_reader;
}

void iOS4Decoder::loadContents(std::stop_token stop) {
  const bool encrypted = readFlagOfEncryption();
  const auto* media = reader(stop).records().entriesOf("MediaDomain");
  if (stop.stop_requested()) {
    m_reader.reset();  // it may hold nothing of what the manifest says
    return;
  }
  Found found;
  if (media) {
    for (const MBDBXRow& row : *media) {
      const std::string_view path = row.path();
      if (row.type() == MBDBXRow::RegularFile) {
        keep(row, path, endsLikePhoto(path), found);
      }
    }
  }
  setContents(encrypted, std::move(found));
}

void iOS4Decoder::visitFiles(const FileVisitor& visit) {
  for (const auto& [domain, rows] : reader().records().map()) {
    for (const MBDBXRow& row : rows) {
      if (row.filelength() == 0) {
        continue;  // a folder, a link, or nothing to show
      }
      const std::string filename = row.hash().value_or(std::string());
      visit({domain, row.path(), filename, row.filelength(), row.modificationDate(), row.type()});
    }
  }
}

std::string iOS4Decoder::contentFileName(const MBDBXRow& photo) const {
  return photo.hash().value_or(std::string());
}

PhotoInfo iOS4Decoder::infoOf(const MBDBXRow& photo) const {
  return infoOfRecord(*photo.record());
}

}  // namespace snaplift
