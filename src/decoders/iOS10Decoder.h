#pragma once

#include <memory_resource>
#include <string>
#include <string_view>

#include "decoders/DatabaseFiles.h"
#include "decoders/PhotoDecoder.h"

namespace snaplift {

// Backups of system versions 10 and later: the photos and films of the camera roll's domain that
// "Manifest.db" lists, by path. Originals, edited ones and those of the cloud library; what the
// device derived from them is left out, but that its thumbnails are at hand. Of two rows of one
// path the last counts. The contents of a backup that says that it is encrypted are not listed: its
// database may be encrypted, too, and is not touched. See BackupDecoderDelegate for the contract.
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
  DatabaseFiles::Texts m_texts, m_textsOfThumbnails;
};

}  // namespace snaplift
