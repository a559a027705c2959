#pragma once

#include <optional>
#include <string_view>

#include "decoders/FileListDecoder.h"

namespace snaplift {

// Backups of system versions 1 and 2. A file is either a pair, B.mdinfo (a property list with the
// "Path") and B.mddata (the bytes), or, where there is no readable B.mdinfo, one property list
// B.mdbackup with "Path" and "Data". A photo of the single form is held in memory for as long as
// the decoder lives. The date of a file is the modification date of the file that holds its bytes.
// Nothing in these backups is encrypted. See BackupDecoderDelegate for the contract.
class iOS2Decoder : public FileListDecoder {
public:
  using FileListDecoder::FileListDecoder;
  std::string_view name() const override { return "iOS2Decoder"; }

protected:
  std::string_view photoDomain() const override { return "HomeDomain"; }
  bool knowsEncryption() const override { return false; }
  std::optional<BackupFileModel> readFileModel(const ListedFile& file,
                                               PathFilter isWanted) const override;
  std::optional<Bytes> dataOf(const BackupFileModel& photo, Bytes reuse) const override;
  bool holdsFileOf(const BackupFileModel& photo) const override;
};

}  // namespace snaplift
