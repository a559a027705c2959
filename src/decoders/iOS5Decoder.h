#pragma once

#include <memory>
#include <string>

#include "decoders/PhotoDecoder.h"
#include "formats/iOS5BackupReader.h"

namespace snaplift {

// Backups of system versions 5 and later. The photos are the files of the camera roll's domain
// whose path ends in png or jpg, in manifest order. See BackupDecoderDelegate for the contract.
class iOS5Decoder : public PhotoDecoder<ManifestRecord> {
public:
  using PhotoDecoder::PhotoDecoder;

  void loadContents(std::stop_token stop = {}) override;
  void visitFiles(const FileVisitor& visit) override;
  std::string_view name() const override { return "iOS5Decoder"; }

  // The backup's index, made at the first call and kept.
  iOS5BackupReader& reader();

protected:
  std::string contentFileName(const ManifestRecord& photo) const override;
  PhotoInfo infoOf(const ManifestRecord& photo) const override;

private:
  std::unique_ptr<iOS5BackupReader> m_reader;
};

}  // namespace snaplift
