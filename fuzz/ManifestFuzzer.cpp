#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "FuzzFolder.h"
#include "Require.h"
#include "formats/MBDBXReader.h"
#include "formats/iOS5BackupReader.h"
#include "foundation/Log.h"

namespace snaplift {
namespace {

using fuzzing::require;

bool liesIn(std::string_view text, ByteView data) {
  const auto begin = reinterpret_cast<std::uintptr_t>(data.data());
  const auto at = reinterpret_cast<std::uintptr_t>(text.data());
  return text.empty() || (at >= begin && at + text.size() <= begin + data.size());
}

// A record answers to each of its keys, and its texts are views of the data.
void visit(const ManifestRecord& record, ByteView data) {
  require(liesIn(record.domain(), data) && liesIn(record.path(), data));
  require(liesIn(record.linkTarget(), data) && liesIn(record.something(), data));
  for (const std::string_view key : record.keys()) {
    require(record.valueForKey(key).has_value());
  }
  require(record.properties().size() <= 255);
}

// Walks the entries twice, by position and by offset, and counts those with content.
std::size_t walk(ByteView data) {
  std::size_t withContent = 0;
  std::uint64_t offset = 6;
  while (offset < data.size()) {
    const std::uint64_t before = offset;
    const std::optional<ManifestRecord> record = ManifestRecord::fromOffset(data, offset);
    if (!record) {
      require(offset == before);
      break;
    }
    require(offset >= before + 50);  // five lengths and the fields of fixed width
    visit(*record, data);
    withContent += record->filelength() != 0;
  }
  iOS5MBDBReader reader(Bytes::copyOf(data));
  while (reader.nextEntry()) {
    require(reader.position() <= data.size());
  }
  return withContent;
}

template <class Records>
std::size_t count(const Records& records) {
  std::size_t entries = 0;
  for (const auto& [domain, list] : records.map()) {
    entries += list.size();
  }
  return entries;
}

}  // namespace
}  // namespace snaplift

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace snaplift;
  static const fuzzing::FuzzFolder folder;
  const LogCapture quiet([](const std::string&) {});
  const ByteView data(bytes, size);
  const std::size_t withContent = walk(data);
  MBDBXRow::initWithRow(data);
  folder.write("Manifest.mbdb", textOf(data));
  iOS5BackupReader five(folder.path(""));
  require(count(five.records()) == withContent);
  const MBDBXReader four(folder.path(""));
  require(count(four.records()) >= withContent);
  for (const auto& [domain, rows] : four.records().map()) {
    for (std::size_t i = 1; i < rows.size(); ++i) {
      require(rows[i - 1].modificationDate() <= rows[i].modificationDate());
    }
  }
  return 0;
}
