#pragma once

#include <string_view>

#include "decoders/FileListDecoder.h"

namespace snaplift {

// Backups of system version 3: each file is a pair, B.mdinfo (a property list whose "Metadata" is
// itself a property list with the "Path") and B.mddata (the bytes). The date of a file is the
// "ModificationTime" of its manifest entry. See BackupDecoderDelegate for the contract.
class iOS3Decoder : public FileListDecoder {
public:
  using FileListDecoder::FileListDecoder;
  std::string_view name() const override { return "iOS3Decoder"; }

protected:
  std::string_view photoDomain() const override { return "MediaDomain"; }
  bool knowsEncryption() const override { return true; }
  std::optional<BackupFileModel> readFileModel(const OpenFolder& folder, const ListedFile& file,
                                               Wanted wanted) const override;
};

}  // namespace snaplift
