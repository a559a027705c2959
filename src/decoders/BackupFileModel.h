#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/Bytes.h"
#include "foundation/Time.h"
#include "foundation/files/Path.h"

namespace snaplift {

// One file of a generation-3 or generation-2 backup. Where it lies and what it is called are given
// when it is made and never change, and so its identity does not either. Valid as long as the
// decoder that made it.
class BackupFileModel {
public:
  // `backupFolder` is the decoder's. `path` is the file's within its domain, as the manifest gives
  // it; `backupFileName` names the file with the bytes, inside the backup folder.
  BackupFileModel(std::string_view backupFolder, std::string path, std::string backupFileName)
      : m_backupFolder(backupFolder),
        m_path(std::move(path)),
        m_backupFileName(std::move(backupFileName)) {}

  std::string_view backupFolder() const { return m_backupFolder; }
  const std::string& path() const { return m_path; }
  const std::string& backupFileName() const { return m_backupFileName; }
  // The folder joined with the path: the file's identity in its backup.
  std::string uniquePath() const { return joinPath(m_backupFolder, m_path); }

  std::optional<Instant> modificationDate;
  std::uint64_t filelength = 0;  // in bytes; known in an inventory only
  std::optional<Bytes> data;     // the content, where it is held in memory

private:
  std::string_view m_backupFolder;
  std::string m_path;
  std::string m_backupFileName;
};

}  // namespace snaplift
