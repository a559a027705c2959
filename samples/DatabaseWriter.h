#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace snaplift::samples {

// One row of the "Files" table of a "Manifest.db". The defaults are those of a regular file.
struct DatabaseEntry {
  std::string domain = {}, path = {};
  std::optional<std::string> fileID = {};  // where it is not the digest of domain and path
  int flags = 1;                           // 1 file, 2 folder, 4 link
  std::string record = {};                 // see archivedRecord()
};

// The archived record of a file: sizes in bytes, times in seconds since 1970.
std::string archivedRecord(const std::string& path, std::uint64_t size, std::int64_t birth,
                           std::int64_t lastModified, std::uint16_t mode);

// Writes a "Manifest.db" with those rows into the file `path`, anew. Of `rowsInLog` rows at the
// end the main file knows nothing: they stand in a write-ahead log beside it, as a program leaves
// it that was stopped. Throws std::runtime_error.
void writeManifestDatabase(const std::string& path, const std::vector<DatabaseEntry>& rows,
                           std::size_t rowsInLog = 0);

// Has SQLite do `sql` on the database in the file `path`, which is made where it is missing. For
// databases that no device would write. Throws std::runtime_error.
void changeDatabase(const std::string& path, const std::string& sql);

}  // namespace snaplift::samples
