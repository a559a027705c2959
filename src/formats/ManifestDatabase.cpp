#include "formats/ManifestDatabase.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include <sqlite3.h>

#include "foundation/files/File.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

// Between two looks at the stop token.
constexpr int stepsBetweenTests = 10'000;
// A row takes some twenty steps of SQLite's machine and has a hundred bytes or more.
constexpr std::uint64_t stepsOfAnyDatabase = 50'000'000;
constexpr std::uint64_t stepsForEachByte = 8;

constexpr int cacheSizeInKibibytes = 8192;

// Places where the walk may start again behind something that cannot be read. Each costs as much as
// a hundred rows: a small file has few.
constexpr std::uint64_t maximumFailures = 10'000;
constexpr std::uint64_t failuresOfAnyDatabase = 100;
constexpr std::uint64_t bytesForEachFailure = 64;

struct StatementEnd {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, StatementEnd>;

Statement prepare(sqlite3* database, const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
  return Statement(statement);
}

std::string_view textAt(sqlite3_stmt* row, int column) {
  const void* text = sqlite3_column_text(row, column);
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
  return text ? std::string_view(static_cast<const char*>(text), size) : std::string_view();
}

ByteView bytesAt(sqlite3_stmt* row, int column) {
  const void* bytes = sqlite3_column_blob(row, column);
  const auto size = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
  return bytes ? ByteView(static_cast<const std::uint8_t*>(bytes), size) : ByteView();
}

// The result columns of a query, in this order.
enum Column { Rowid, FileID, Domain, RelativePath, Flags, File };

DatabaseRow rowOf(sqlite3_stmt* row) {
  const bool hasFlags = sqlite3_column_type(row, Flags) == SQLITE_INTEGER;
  return {textAt(row, FileID), textAt(row, Domain), textAt(row, RelativePath),
          hasFlags ? std::optional<std::int64_t>(sqlite3_column_int64(row, Flags)) : std::nullopt,
          bytesAt(row, File)};
}

}  // namespace

// A walk over the rows. It asks for one domain as long as all goes well; from the first row that
// cannot be read on it asks for every row, so that it knows where the next one is.
struct ManifestDatabase::Walk {
  const ManifestDatabase& database;
  const std::optional<std::string_view> domain;
  const Visitor& visit;
  std::int64_t last = std::numeric_limits<std::int64_t>::min();  // the rowid of the last row
  std::int64_t jump = 1;
  bool asksForDomain = domain.has_value();

  // From behind the last row as far as it goes. The answer is SQLite's.
  int goOn() {
    std::string sql = "SELECT " + database.m_columns + " FROM Files NOT INDEXED WHERE ";
    sql += database.m_hasRowids ? "_rowid_ > ?1" : "?1 < 0";
    sql += asksForDomain ? " AND domain = ?2 COLLATE BINARY" : "";
    const Statement statement = prepare(database.m_database, sql);
    if (!statement) {
      return SQLITE_ERROR;
    }
    sqlite3_bind_int64(statement.get(), 1, last);
    if (asksForDomain) {
      sqlite3_bind_text(statement.get(), 2, domain->data(), static_cast<int>(domain->size()),
                        SQLITE_STATIC);
    }
    int result = SQLITE_ROW;
    while ((result = sqlite3_step(statement.get())) == SQLITE_ROW) {
      last = sqlite3_column_int64(statement.get(), Rowid);
      jump = 1;
      const DatabaseRow row = rowOf(statement.get());
      if (!domain || row.domain == *domain) {
        visit(row);
      }
    }
    return result;
  }

  // Takes the row behind the last one for read; where not even its number can be found out, ever
  // more of them. False where there can be no more.
  bool skip() {
    const Statement next = prepare(
        database.m_database, "SELECT _rowid_ FROM Files NOT INDEXED WHERE _rowid_ > ?1 LIMIT 1");
    sqlite3_bind_int64(next.get(), 1, last);
    if (sqlite3_step(next.get()) == SQLITE_ROW) {
      last = sqlite3_column_int64(next.get(), Rowid);
      return true;
    }
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    last = std::max<std::int64_t>(last, 0);
    if (jump > highest / 2 || last > highest - jump) {
      return false;
    }
    last += jump;
    jump *= 2;
    return true;
  }

  bool run() {
    for (std::uint64_t failures = 0; failures <= database.m_mostFailures; ++failures) {
      const int result = goOn();
      if (result == SQLITE_DONE) {
        return failures == 0;
      }
      const bool isOfOneRow = result == SQLITE_TOOBIG || result == SQLITE_CORRUPT;
      if (!database.m_hasRowids || !isOfOneRow ||
          (!std::exchange(asksForDomain, false) && !skip())) {
        return false;
      }
    }
    return false;
  }
};

ManifestDatabase::ManifestDatabase(const std::string& backupFolder, std::stop_token stop)
    : m_stop(std::move(stop)), m_source(joinPath(backupFolder, "Manifest.db"), m_stop) {
  const auto attributes = fileAttributes(joinPath(backupFolder, "Manifest.db"));
  const std::uint64_t size = attributes ? attributes->size : 0;
  m_mostFailures = std::min(maximumFailures, failuresOfAnyDatabase + size / bytesForEachFailure);
  m_stepsLeft = (stepsOfAnyDatabase + stepsForEachByte * size) / stepsBetweenTests;
  const int flags = (m_source.isCopy() ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY) |
                    SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE;
  if (!m_source.uri().empty() &&
      sqlite3_open_v2(m_source.uri().c_str(), &m_database, flags, nullptr) == SQLITE_OK) {
    secure();
    if (!findColumns()) {
      m_columns.clear();
    }
  }
}

ManifestDatabase::~ManifestDatabase() {
  sqlite3_close(m_database);
}

int ManifestDatabase::isToStop(void* database) {
  auto& self = *static_cast<ManifestDatabase*>(database);
  return self.m_stop.stop_requested() || self.m_stepsLeft-- == 0 ? 1 : 0;
}

void ManifestDatabase::secure() {
  for (const auto& [option, value] : std::array{
           std::pair(SQLITE_DBCONFIG_DEFENSIVE, 1), std::pair(SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0),
           std::pair(SQLITE_DBCONFIG_ENABLE_TRIGGER, 0), std::pair(SQLITE_DBCONFIG_ENABLE_VIEW, 0),
           std::pair(SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0),
           std::pair(SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1)}) {
    sqlite3_db_config(m_database, option, value, nullptr);
  }
  for (const auto& [limit, value] : std::array{
           std::pair(SQLITE_LIMIT_LENGTH, maximumTextLengthInBytes),
           std::pair(SQLITE_LIMIT_SQL_LENGTH, 100'000), std::pair(SQLITE_LIMIT_COLUMN, 100),
           std::pair(SQLITE_LIMIT_EXPR_DEPTH, 20), std::pair(SQLITE_LIMIT_COMPOUND_SELECT, 2),
           std::pair(SQLITE_LIMIT_VDBE_OP, 25'000), std::pair(SQLITE_LIMIT_ATTACHED, 0),
           std::pair(SQLITE_LIMIT_WORKER_THREADS, 0)}) {
    sqlite3_limit(m_database, limit, value);
  }
  // A copy is ours alone: its index of the log stays in memory.
  const std::string pragmas =
      "PRAGMA mmap_size=0; PRAGMA cell_size_check=ON; "
      "PRAGMA temp_store=MEMORY; PRAGMA locking_mode=EXCLUSIVE; "
      "PRAGMA cache_size=-" +
      std::to_string(cacheSizeInKibibytes);
  sqlite3_exec(m_database, pragmas.c_str(), nullptr, nullptr, nullptr);
  sqlite3_progress_handler(m_database, stepsBetweenTests, isToStop, this);
}

// The query names those of the table's columns that are there.
bool ManifestDatabase::findColumns() {
  const Statement table = prepare(
      m_database, "SELECT type, wr FROM pragma_table_list WHERE schema='main' AND name='Files'");
  if (sqlite3_step(table.get()) != SQLITE_ROW || textAt(table.get(), 0) != "table") {
    return false;
  }
  m_hasRowids = sqlite3_column_int(table.get(), 1) == 0;
  bool hasID = false, hasDomain = false, hasPath = false, hasFlags = false, hasRecord = false;
  const Statement columns =
      prepare(m_database, "SELECT name, hidden FROM pragma_table_xinfo('Files')");
  while (sqlite3_step(columns.get()) == SQLITE_ROW) {
    const std::string_view name = textAt(columns.get(), 0);
    hasID = hasID || name == "fileID";
    hasDomain = hasDomain || name == "domain";
    hasPath = hasPath || name == "relativePath";
    hasFlags = hasFlags || name == "flags";
    hasRecord = hasRecord || name == "file";
    if (sqlite3_column_int(columns.get(), 1) != 0) {
      return false;  // a column that computes itself, as expensively as it likes
    }
  }
  // The length of a value is known without reading it.
  const std::string record = "CASE WHEN typeof(file)='blob' AND length(file)<=" +
                             std::to_string(maximumRecordLengthInBytes) + " THEN file END";
  m_columns = std::string(m_hasRowids ? "_rowid_" : "0") + ", fileID, domain, relativePath, " +
              (hasFlags ? "flags" : "NULL") + ", " + (hasRecord ? record : "NULL");
  return hasID && hasDomain && hasPath;
}

bool ManifestDatabase::visitRows(std::optional<std::string_view> domain, const Visitor& visit) {
  return !m_columns.empty() && Walk{*this, domain, visit}.run();
}

}  // namespace snaplift
