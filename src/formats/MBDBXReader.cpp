#include "formats/MBDBXReader.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "foundation/File.h"
#include "foundation/Path.h"

namespace snaplift {
namespace {

// Sorts small keys in the rows' stead and moves each row once: a row is five times the size of a
// key, and its date has to be decoded.
void sortByModificationDate(std::vector<MBDBXRow>& rows) {
  struct Key {
    Instant date;
    std::uint64_t row;
    auto operator<=>(const Key&) const = default;
  };
  std::vector<Key> keys;
  keys.reserve(rows.size());
  for (const MBDBXRow& row : rows) {
    keys.push_back({row.modificationDate(), keys.size()});
  }
  if (std::ranges::is_sorted(keys)) {
    return;
  }
  std::ranges::sort(keys);
  std::vector<MBDBXRow> sorted;
  sorted.reserve(rows.size());
  for (const Key& key : keys) {
    sorted.push_back(std::move(rows[key.row]));
  }
  rows = std::move(sorted);
}

}  // namespace

MBDBXReader::MBDBXReader(std::string path, std::stop_token stop)
    : m_path(std::move(path)),
      m_mbdx(readFile(joinPath(m_path, "Manifest.mbdx"))),
      m_mbdb(joinPath(m_path, "Manifest.mbdb")) {
  std::size_t count = 0;
  while (std::optional<ManifestRecord> record = m_mbdb.nextEntry()) {
    if (++count % entriesBetweenStopTests == 0 && stop.stop_requested()) {
      m_records.clear();
      return;
    }
    record->setBackupFolder(&m_path);
    m_records.append(record->domain(), MBDBXRow::initWithRecord(*record));
  }
  for (auto& [domain, rows] : m_records.map()) {
    sortByModificationDate(rows);
  }
}

}  // namespace snaplift
