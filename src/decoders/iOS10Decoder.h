#pragma once

#include <array>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "decoders/PhotoDecoder.h"
#include "formats/ArchivedFile.h"
#include "formats/ManifestDatabase.h"

namespace snaplift {

// One file of a backup of system version 10 or later. A backup may have a million, so the texts
// are the decoder's, and the name of the content file is kept as the digest that it is.
struct DatabaseFile {
  const std::string* backupFolder;
  std::string_view domain;  // empty in a photo, whose domain is known
  std::string_view path;
  std::array<std::uint8_t, 20> digest;
  bool hasContentName;  // false: the row's name is no name of a content file
  std::optional<std::uint64_t> size;
  std::int64_t birth;  // seconds since 1970; 0: not known
  std::int64_t lastModified;

  std::string uniquePath() const;
  // "ab/abcdef…", inside the backup folder; empty where there is none.
  std::string contentFileName() const;
};

// Backups of system versions 10 and later: the photos and films of the camera roll's domain that
// "Manifest.db" lists, by path. Originals, edited ones and those of the cloud library; what the
// device derived from them (thumbnails, metadata) is left out. Of two rows of one path the last
// counts. The contents of a backup that says that it is encrypted are not listed: its database may
// be encrypted, too, and is not touched. See BackupDecoderDelegate for the contract.
class iOS10Decoder : public PhotoDecoder<DatabaseFile> {
public:
  using PhotoDecoder::PhotoDecoder;

  void loadContents(std::stop_token stop = {}) override;
  bool encryptsList() const override { return encrypted(); }
  void visitFiles(const FileVisitor& visit) override;
  std::string_view name() const override { return "iOS10Decoder"; }

protected:
  std::string contentFileName(const DatabaseFile& photo) const override;
  PhotoInfo infoOf(const DatabaseFile& photo) const override;

private:
  using Texts = std::pmr::monotonic_buffer_resource;

  DatabaseFile fileOf(const DatabaseRow& row, Texts& texts) const;

  Texts m_texts;  // of the photos
};

}  // namespace snaplift
