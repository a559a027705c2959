#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "formats/DatabaseSource.h"
#include "foundation/Bytes.h"

struct sqlite3;

namespace snaplift {

// One row of the table "Files": a file, folder or link that the device backed up. Valid during the
// call that hands it out. A column that the table lacks, or that holds nothing, is empty.
struct DatabaseRow {
  std::string_view fileID;  // should be 40 hexadecimal digits
  std::string_view domain;
  std::string_view relativePath;
  std::optional<std::int64_t> flags;  // 1 file, 2 folder, 4 link
  ByteView file;                      // the archived record; empty where it is no record's size
};

// The manifest of backups of system versions 10 and later: the SQLite database "Manifest.db". It is
// never written (see DatabaseSource), and nothing that it says is believed: the schema cannot run
// code, a view or a virtual table in place of the table is refused, as are columns that compute
// themselves, lengths are limited, nothing is mapped into memory, and the work is limited by the
// file's size. Behind a row that cannot be read the walk goes on with the next one that can.
//
// One thread at a time.
class ManifestDatabase {
public:
  using Visitor = std::function<void(const DatabaseRow&)>;

  // A longer text makes its row unreadable, and a longer record is left out of its row. Real ones
  // have some hundred bytes.
  static constexpr int maximumTextLengthInBytes = 1 << 20;
  static constexpr int maximumRecordLengthInBytes = 1 << 16;

  // Opens the database of the backup in `backupFolder`. Never fails: a database that cannot be
  // opened has no rows, and is not whole.
  explicit ManifestDatabase(const std::string& backupFolder, std::stop_token stop = {});
  ManifestDatabase(const ManifestDatabase&) = delete;
  ManifestDatabase& operator=(const ManifestDatabase&) = delete;
  ~ManifestDatabase();

  // Calls `visit` for each row of `domain`, or of every domain, in the order of the table. The
  // answer is whether all rows were read; not after a request of `stop`.
  bool visitRows(std::optional<std::string_view> domain, const Visitor& visit);

private:
  struct Walk;

  static int isToStop(void* database);
  void secure();
  bool findColumns();

  const std::stop_token m_stop;
  const DatabaseSource m_source;
  std::uint64_t m_stepsLeft;         // of SQLite's machine, in units of stepsBetweenTests
  std::uint64_t m_mostFailures = 0;  // of one walk
  sqlite3* m_database = nullptr;
  std::string m_columns;  // what is asked of each row; empty where there is no such table
  bool m_hasRowids = false;
};

}  // namespace snaplift
