#pragma once

#include <memory>
#include <string>

#include "decoders/PhotoDecoder.h"
#include "formats/MBDBXReader.h"

namespace snaplift {

// Backups of system version 4. The photos are the rows of type 1 of the media domain whose path
// ends in png or jpg, by modification date, earliest first. A row of type 1 may be a link or an
// empty file; it is listed and has no content. See BackupDecoderDelegate for the contract.
class iOS4Decoder : public PhotoDecoder<MBDBXRow> {
public:
  using PhotoDecoder::PhotoDecoder;

  void loadContents(std::stop_token stop = {}) override;
  void visitFiles(const FileVisitor& visit) override;
  std::string_view name() const override { return "iOS4Decoder"; }

  // The backup's index. Made, and with it the manifest read, at the first call, and kept.
  const MBDBXReader& reader(std::stop_token stop = {});

protected:
  std::string contentFileName(const MBDBXRow& photo) const override;
  PhotoInfo infoOf(const MBDBXRow& photo) const override;

private:
  std::unique_ptr<MBDBXReader> m_reader;
};

}  // namespace snaplift
