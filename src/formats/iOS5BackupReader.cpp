#include "formats/iOS5BackupReader.h"

#include <utility>

#include "foundation/files/Path.h"

namespace snaplift {

iOS5BackupReader::iOS5BackupReader(std::string backupFolderPath)
    : m_backupFolderPath(std::move(backupFolderPath)) {}

const iOS5BackupReader::Records& iOS5BackupReader::records(std::stop_token stop) {
  if (m_built) {
    return m_records;
  }
  m_reader = iOS5MBDBReader(joinPath(m_backupFolderPath, "Manifest.mbdb"));
  std::size_t count = 0;
  while (const std::optional<ManifestRecord> record = m_reader.nextEntry()) {
    if (++count % entriesBetweenStopTests == 0 && stop.stop_requested()) {
      m_records.clear();
      return m_records;
    }
    if (record->filelength() != 0) {
      addBackupRowToRecords(*record);
    }
  }
  m_built = true;
  return m_records;
}

void iOS5BackupReader::addBackupRowToRecords(ManifestRecord record) {
  record.setBackupFolder(&m_backupFolderPath);
  m_records.append(record.domain(), record);
}

}  // namespace snaplift
