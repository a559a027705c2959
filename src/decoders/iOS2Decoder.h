#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>

#include "decoders/FileListDecoder.h"

namespace snaplift {

// Backups of system versions 1 and 2. A file is either a pair, B.mdinfo (a property list with the
// "Path") and B.mddata (the bytes), or, where there is no readable B.mdinfo, one property list
// B.mdbackup with "Path" and "Data". A photo of the single form is held in memory for as long as
// the decoder lives, unless that came to more than a gigabyte: many names may lead to one large
// file. The date of a file is the modification
// date of the file that holds its bytes. Nothing in these backups is encrypted. See
// BackupDecoderDelegate for the contract.
class iOS2Decoder : public FileListDecoder {
public:
  static constexpr std::uint64_t usualMostBytesHeld = std::uint64_t{1} << 30;

  explicit iOS2Decoder(std::string backupPath, std::uint64_t mostBytesHeld = usualMostBytesHeld)
      : FileListDecoder(std::move(backupPath)), m_mostBytesHeld(mostBytesHeld) {}
  void loadContents(std::stop_token stop = {}) override;
  std::string_view name() const override { return "iOS2Decoder"; }

protected:
  std::string_view photoDomain() const override { return "HomeDomain"; }
  bool knowsEncryption() const override { return false; }
  std::optional<BackupFileModel> readFileModel(const OpenFolder& folder, const ListedFile& file,
                                               Wanted wanted) const override;
  std::optional<Bytes> dataOf(const BackupFileModel& photo, Bytes reuse) const override;
  std::string contentFileOf(const BackupFileModel& photo) const override;
  ContentState stateOf(const BackupFileModel& photo) const override;

private:
  // Whether so many bytes more may be held; they then count as held.
  bool mayHold(std::uint64_t bytes) const;

  const std::uint64_t m_mostBytesHeld;
  mutable std::atomic<std::uint64_t> m_bytesHeld = 0;  // by the load that runs, or ran last
};

}  // namespace snaplift
