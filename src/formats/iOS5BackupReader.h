#pragma once

#include <stop_token>
#include <string>

#include "formats/ManifestDomains.h"
#include "formats/ManifestRecord.h"
#include "formats/iOS5MBDBReader.h"

namespace snaplift {

// The index of one generation-5 backup: its non-empty files by domain, in manifest order, each
// placed in the backup ("filename" names its content file, "uniquePath" is its identity). Folders,
// links and empty files, all of which have the length 0, are left out.
//
// The records are views into the manifest, which the index keeps in memory for as long as it lives.
// Built by the first call of records(), on that thread; only read afterwards, from any thread.
class iOS5BackupReader {
public:
  using Records = ManifestDomains<ManifestRecord>;

  // Reads nothing yet.
  explicit iOS5BackupReader(std::string backupFolderPath);
  iOS5BackupReader(const iOS5BackupReader&) = delete;
  iOS5BackupReader& operator=(const iOS5BackupReader&) = delete;

  // The index, built at the first call and the same ever after. A missing or unreadable manifest
  // gives an empty one. When `stop` is requested during that call the answer is empty and the index
  // not built: a part of a manifest is never passed off as the whole.
  const Records& records(std::stop_token stop = {});

  // Whether records() found a manifest, and read it to its end.
  bool hasWholeManifest() const { return m_reader.isWhole(); }

  // Places `record` in this backup and appends it to the list of its domain. Its texts must live as
  // long as this index.
  void addBackupRowToRecords(ManifestRecord record);

private:
  const std::string m_backupFolderPath;
  iOS5MBDBReader m_reader;
  Records m_records;
  bool m_built = false;
};

}  // namespace snaplift
