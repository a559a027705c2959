#include "formats/MBDBXReader.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "foundation/files/File.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

// Sorts numbers in the rows' stead and moves each row once: a row is five times the size of its
// number, and its date has to be decoded. A date is a signed 32-bit count of seconds, and a
// manifest holds fewer than 2^32 entries, so date and place make one number; equal dates keep their
// order.
void sortByModificationDate(std::vector<MBDBXRow>& rows) {
  constexpr std::int64_t earliest = std::numeric_limits<std::int32_t>::min();
  std::vector<std::uint64_t> keys;
  keys.reserve(rows.size());
  for (const MBDBXRow& row : rows) {
    const auto time = row.modificationDate().time_since_epoch();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time).count();
    keys.push_back(static_cast<std::uint64_t>(seconds - earliest) << 32 | keys.size());
  }
  if (std::ranges::is_sorted(keys)) {
    return;
  }
  std::ranges::sort(keys);
  std::vector<MBDBXRow> sorted;
  sorted.reserve(rows.size());
  for (const std::uint64_t key : keys) {
    sorted.push_back(rows[key & 0xFFFFFFFF]);
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
