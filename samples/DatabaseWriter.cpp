#include "samples/DatabaseWriter.h"

#include <filesystem>
#include <memory>
#include <stdexcept>

#include <sqlite3.h>

#include "samples/BackupWriter.h"
#include "samples/ManifestWriter.h"
#include "samples/PropertyListWriter.h"

namespace snaplift::samples {
namespace {

class Database {
public:
  explicit Database(const std::string& path) {
    writeFile(path + ".folder", "");  // makes the folders
    std::filesystem::remove(path + ".folder");
    check(sqlite3_open(path.c_str(), &m_database));
    sqlite3_db_config(m_database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, static_cast<int*>(nullptr));
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() { sqlite3_close(m_database); }

  void run(const std::string& sql) {
    check(sqlite3_exec(m_database, sql.c_str(), nullptr, nullptr, nullptr));
  }

  void insert(const std::vector<DatabaseEntry>& rows, std::size_t begin, std::size_t end) {
    run("BEGIN");
    sqlite3_stmt* prepared = nullptr;
    check(sqlite3_prepare_v2(m_database, "INSERT INTO Files VALUES(?,?,?,?,?)", -1, &prepared,
                             nullptr));
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(prepared,
                                                                          sqlite3_finalize);
    for (std::size_t i = begin; i < end; ++i) {
      const DatabaseEntry& row = rows[i];
      bindText(prepared, 1, row.fileID.value_or(contentName(row.domain, row.path)));
      bindText(prepared, 2, row.domain);
      bindText(prepared, 3, row.path);
      sqlite3_bind_int(prepared, 4, row.flags);
      sqlite3_bind_blob(prepared, 5, row.record.data(), static_cast<int>(row.record.size()),
                        SQLITE_TRANSIENT);
      check(sqlite3_step(prepared));
      sqlite3_reset(prepared);
    }
    run("COMMIT");
  }

private:
  static void bindText(sqlite3_stmt* statement, int number, const std::string& text) {
    sqlite3_bind_text(statement, number, text.data(), static_cast<int>(text.size()),
                      SQLITE_TRANSIENT);
  }

  void check(int result) {
    if (result != SQLITE_OK && result != SQLITE_DONE) {
      throw std::runtime_error(std::string("database: ") + sqlite3_errmsg(m_database));
    }
  }

  sqlite3* m_database = nullptr;
};

}  // namespace

std::string archivedRecord(const std::string& path, std::uint64_t size, std::int64_t birth,
                           std::int64_t lastModified, std::uint16_t mode) {
  const auto uid = [](std::uint64_t number) { return PlistValue(PlistValue::Uid{number}); };
  const PlistValue file = PlistValue::dictionary({{"LastModified", lastModified},
                                                  {"Flags", 0},
                                                  {"GroupID", 501},
                                                  {"LastStatusChange", lastModified},
                                                  {"Birth", birth},
                                                  {"Size", size},
                                                  {"InodeNumber", 4711},
                                                  {"Mode", mode},
                                                  {"UserID", 501},
                                                  {"RelativePath", uid(2)},
                                                  {"ProtectionClass", 3},
                                                  {"$class", uid(3)}});
  const PlistValue type = PlistValue::dictionary(
      {{"$classname", "File"}, {"$classes", PlistValue::array({"File", "Object"})}});
  return binaryPropertyList(
      PlistValue::dictionary({{"$version", 100000},
                              {"$archiver", "KeyedArchiver"},
                              {"$top", PlistValue::dictionary({{"root", uid(1)}})},
                              {"$objects", PlistValue::array({"$null", file, path, type})}}));
}

void writeManifestDatabase(const std::string& path, const std::vector<DatabaseEntry>& rows,
                           std::size_t rowsInLog) {
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
    std::filesystem::remove(path + suffix);
  }
  {
    Database database(path);
    database.run(
        "CREATE TABLE Files(fileID TEXT PRIMARY KEY, domain TEXT, relativePath TEXT, "
        "flags INTEGER, file BLOB); CREATE TABLE Properties(key TEXT PRIMARY KEY, value BLOB); "
        "CREATE INDEX FilesDomainIdx ON Files(domain)");
    database.insert(rows, 0, rows.size() - rowsInLog);
    if (rowsInLog > 0) {
      database.run("PRAGMA journal_mode=WAL; PRAGMA wal_autocheckpoint=0");
      database.insert(rows, rows.size() - rowsInLog, rows.size());
    }
  }
  std::filesystem::remove(path + "-shm");
}

void changeDatabase(const std::string& path, const std::string& sql) {
  Database(path).run(sql);
}

}  // namespace snaplift::samples
