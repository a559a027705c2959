// The indexes of generations 5 and 4 against the least that can be done with a manifest: to read
// it, walk it and digest the names of its files.

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/PeakMemory.h"
#include "bench/Ratio.h"
#include "formats/MBDBXReader.h"
#include "formats/iOS5BackupReader.h"
#include "foundation/Digest.h"
#include "foundation/files/File.h"
#include "foundation/files/TemporaryFolder.h"
#include "samples/BackupWriter.h"
#include "samples/ManifestWriter.h"

namespace snaplift {
namespace {

constexpr double megabyte = 1'000'000;

// A backup folder that holds nothing but a manifest.
struct Backup {
  std::string folder;
  std::size_t entries = 0;
  std::size_t files = 0;  // entries with content
  std::uint64_t manifestSize = 0;
};

// Entries as devices write them: 120 domains in long runs, paths of 70 bytes, every third entry a
// folder or an empty file, some with a hash or a property, dates in no order.
samples::ManifestEntry entryAt(std::size_t i, std::size_t count, std::mt19937& random) {
  constexpr std::size_t domains = 120;
  const std::size_t domain = i * domains / count;
  std::string number = std::to_string(i);
  number.insert(0, 8 - number.size(), '0');
  samples::ManifestEntry entry;
  entry.domain = domain == 7   ? "CameraRollDomain"
                 : domain == 8 ? "MediaDomain"
                               : "AppDomain-com.example.application" + std::to_string(domain);
  entry.path = "Library/Application Support/Documents/Container/File_" + number + "_copy.plist";
  entry.modificationDate = 1'300'000'000 + static_cast<std::uint32_t>(random() % 50'000'000);
  entry.creationDate = entry.addedDate = entry.modificationDate;
  if (i % 3 == 0) {
    entry.mode = i % 2 == 0 ? samples::folderMode : samples::regularFileMode;
    return entry;
  }
  entry.filelength = 1 + random() % 3'000'000;
  if (i % 4 == 0) {
    entry.dataHash = std::string(20, '\x42');
  }
  if (i % 10 == 0) {
    entry.properties = {{"com.apple.assetsd.UUID", std::string(16, '\x17')}};
  }
  return entry;
}

Backup backupOf(std::size_t entries) {
  Backup backup{temporaryFolder() + "/" + std::to_string(entries), entries};
  std::string manifest = samples::manifestDatabase({});
  std::mt19937 random(1);
  for (std::size_t i = 0; i < entries; ++i) {
    const samples::ManifestEntry entry = entryAt(i, entries, random);
    backup.files += entry.filelength != 0;
    samples::appendManifestEntry(manifest, entry);
  }
  backup.manifestSize = manifest.size();
  samples::writeFile(backup.folder + "/Manifest.mbdb", manifest);
  return backup;
}

std::size_t lengthAt(const std::uint8_t* bytes) {
  const std::size_t length = static_cast<std::size_t>(bytes[0] << 8 | bytes[1]);
  return length == 0xFFFF ? 0 : length;
}

// The floor. It knows the layout, believes every length and stores nothing.
std::size_t filesDigested(const std::string& manifestPath) {
  const std::optional<Bytes> manifest = readFile(manifestPath);
  const std::uint8_t* entry = manifest->data() + 6;
  const std::uint8_t* end = manifest->data() + manifest->size();
  std::size_t files = 0;
  while (entry < end) {
    const ByteView domain(entry + 2, lengthAt(entry));
    const ByteView path(domain.data() + domain.size() + 2, lengthAt(domain.data() + domain.size()));
    entry = path.data() + path.size();
    const auto skipField = [&] { entry += 2 + lengthAt(entry); };
    for (int field = 0; field < 3; ++field) {
      skipField();
    }
    const bool isEmpty = std::all_of(entry + 30, entry + 38, [](auto byte) { return byte == 0; });
    const int properties = entry[39];
    entry += 40;
    for (int i = 0; i < 2 * properties; ++i) {
      skipField();
    }
    if (!isEmpty) {
      benchmark::DoNotOptimize(sha1({domain, bytesOf("-"), path}));
      ++files;
    }
  }
  return files;
}

template <class Records>
std::size_t entriesOf(const Records& records) {
  std::size_t entries = 0;
  for (const auto& [domain, list] : records.map()) {
    entries += list.size();
  }
  return entries;
}

bool indexesGeneration5(const Backup& backup) {
  iOS5BackupReader reader(backup.folder);
  return entriesOf(reader.records()) == backup.files;
}

bool indexesGeneration4(const Backup& backup) {
  return entriesOf(MBDBXReader(backup.folder).records()) == backup.entries;
}

void compare(bench::Ratios& ratios, const std::string& name, const Backup& backup) {
  const std::string path = backup.folder + "/Manifest.mbdb";
  ratios.group(name, bench::PageCache::Hot)
      .floor("read, walk and digest", [=] { return filesDigested(path) == backup.files; })
      .subject("generation-5 index", 0.95, [&] { return indexesGeneration5(backup); })
      .subject("generation-4 index", 1.5, [&] { return indexesGeneration4(backup); });
  const double bar = static_cast<double>(backup.manifestSize + 100 * backup.entries) + 8e6;
  ratios.figure("peak memory, " + name + ", generation 5", "MB", bar / megabyte, [&] {
    const auto bytes = bench::peakMemoryInBytes([&] { return indexesGeneration5(backup); });
    return bytes ? static_cast<double>(*bytes) / megabyte : std::numeric_limits<double>::infinity();
  });
}

}  // namespace
}  // namespace snaplift

int main(int argc, char** argv) {
  using namespace snaplift;
  const Backup small = backupOf(100'000);
  const Backup large = backupOf(1'000'000);
  bench::Ratios ratios;
  compare(ratios, "manifest of 100,000 entries", small);
  compare(ratios, "manifest of 1,000,000 entries", large);
  return ratios.run(argc, argv);
}
