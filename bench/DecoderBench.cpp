// Loading a backup of generation 3, whose photos are told by thousands of small files, and one of
// generation 10, told by a database; and finding a photo by its unique path.

#include <algorithm>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include "bench/PageCache.h"
#include "bench/PeakMemory.h"
#include "bench/Ratio.h"
#include "decoders/iOS10Decoder.h"
#include "decoders/iOS3Decoder.h"
#include "decoders/iOS5Decoder.h"
#include "foundation/files/TemporaryFolder.h"
#include "samples/BackupWriter.h"
#include "samples/DatabaseWriter.h"

namespace snaplift {
namespace {

constexpr std::size_t infoFileCount = 20'000;
constexpr std::size_t photoCount = 10'000;

std::string photoPath(std::size_t i) {
  return "Media/DCIM/" + std::to_string(100 + i / 1000) + "APPLE/IMG_" + std::to_string(i) + ".JPG";
}

// A backup of photos without their content; property lists are binary, as devices wrote them.
void writeBackup(const std::string& folder, samples::Generation generation, std::size_t photos) {
  samples::SampleBackup backup{.generation = generation,
                               .deviceName = "Phone",
                               .productVersion = "3.1",
                               .encoding = samples::PropertyListEncoding::Binary};
  for (std::size_t i = 0; i < photos; ++i) {
    backup.files.push_back({.domain = std::string(samples::photoDomain(generation)),
                            .path = photoPath(i),
                            .content = "photo",
                            .modificationDate = static_cast<std::uint32_t>(i * 7919 % photos),
                            .contentMissing = true});
  }
  samples::writeBackup(folder, backup);
}

// The floor: what cannot be saved by a reader of all info files, in the order of the manifest.
bool opensEach(const std::vector<std::string>& paths) {
  char buffer[4096];
  for (const std::string& path : paths) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const ssize_t count = ::read(file, buffer, sizeof buffer);
    if (::close(file) != 0 || count <= 0) {
      return false;
    }
  }
  return true;
}

void makeCold(const std::vector<std::string>& paths) {
  if (!bench::evictFromPageCache(paths)) {
    throw std::runtime_error("the page cache does not let go");
  }
}

bool loads(iOS3Decoder& decoder) {
  decoder.loadContents();
  return decoder.imageFilePaths().size() == infoFileCount;
}

// A decoder that shows how it finds a photo; asked for its bytes, it would open a file.
class Finder : public iOS5Decoder {
public:
  using iOS5Decoder::iOS5Decoder;
  using iOS5Decoder::photoAtPath;
};

bool findsEach(const Finder& finder, const std::vector<std::string>& paths) {
  return std::ranges::all_of(paths, [&](const auto& path) { return finder.photoAtPath(path); });
}

// What has to be done without an index: the last photo of that path is meant.
bool findsEachByScanning(const std::vector<std::string>& paths) {
  return std::ranges::all_of(paths, [&](const std::string& wanted) {
    const std::string* found = nullptr;
    for (const std::string& path : paths) {
      if (path == wanted) {
        found = &path;
      }
    }
    return found != nullptr;
  });
}

constexpr std::size_t rowCount = 300'000;
constexpr std::size_t rollCount = 100'000;  // of them photos of the camera roll

std::vector<samples::DatabaseEntry> databaseRows() {
  std::vector<samples::DatabaseEntry> rows;
  for (std::size_t i = 0; i < rowCount; ++i) {
    const bool isPhoto = i % 3 == 0;
    const std::string path = isPhoto ? photoPath(i) : "Library/Caches/file" + std::to_string(i);
    const auto time = static_cast<std::int64_t>(1'500'000'000 + i);
    rows.push_back(
        {.domain = isPhoto ? "CameraRollDomain" : "AppDomain-app" + std::to_string(i / 1000),
         .path = path,
         .record = samples::archivedRecord(path, 2'000'000, time, time, samples::regularFileMode)});
  }
  return rows;
}

// The floor: SQLite's own interface, all columns of all rows.
bool stepsThroughEach(const std::string& path) {
  sqlite3* database = nullptr;
  sqlite3_stmt* rows = nullptr;
  const std::string uri = "file:" + path + "?immutable=1";
  sqlite3_open_v2(uri.c_str(), &database, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
  sqlite3_prepare_v2(database, "SELECT fileID, domain, relativePath, flags, file FROM Files", -1,
                     &rows, nullptr);
  std::size_t count = 0;
  int bytes = 0;
  while (sqlite3_step(rows) == SQLITE_ROW) {
    ++count;
    for (int column = 0; column < 5; ++column) {
      bytes |= sqlite3_column_bytes(rows, column);
    }
  }
  sqlite3_finalize(rows);
  sqlite3_close(database);
  return count == rowCount && bytes > 0;
}

bool loadsDatabase(iOS10Decoder& decoder) {
  decoder.loadContents();
  return decoder.imageFilePaths().size() == rollCount && decoder.isComplete();
}

// For each row, and for whatever the database says.
constexpr double boundInMegabytes = 64 + 100.0 * rowCount / 1e6;

double megabytesOfLoad(const std::string& folder) {
  const auto bytes = bench::peakMemoryInBytes([&] {
    iOS10Decoder decoder(folder);
    return loadsDatabase(decoder);
  });
  return bytes ? static_cast<double>(*bytes) / 1e6 : std::numeric_limits<double>::infinity();
}

}  // namespace
}  // namespace snaplift

int main(int argc, char** argv) {
  using namespace snaplift;
  const std::string three = temporaryFolder() + "/three";
  const std::string five = temporaryFolder() + "/five";
  writeBackup(three, samples::Generation::Three, infoFileCount);
  writeBackup(five, samples::Generation::Five, photoCount);
  const std::string ten = temporaryFolder() + "/ten";
  samples::writeManifestDatabase(ten + "/Manifest.db", databaseRows());
  std::optional<iOS10Decoder> decoderOfTen;
  std::vector<std::string> infoFiles;
  for (std::size_t i = 0; i < infoFileCount; ++i) {
    infoFiles.push_back(three + "/" + samples::contentName("MediaDomain", photoPath(i)) +
                        ".mdinfo");
  }
  Finder finder(five);
  const std::vector<std::string>& photos = finder.imageFilePaths();

  // A decoder lives as long as its backup is shown: its end is no part of a load.
  std::optional<iOS3Decoder> decoder;
  const auto makeDecoder = [&] { decoder.emplace(three); };

  bench::Ratios ratios;
  ratios.group("20,000 info files of generation 3", bench::PageCache::Hot)
      .floor("open, read and close", [&] { return opensEach(infoFiles); })
      .subject(
          "load", 0.95, [&] { return loads(*decoder); }, makeDecoder);
  ratios.group("20,000 info files of generation 3, cold", bench::PageCache::Cold)
      .beforeEach([&] { makeCold(infoFiles); })
      .floor("open, read and close", [&] { return opensEach(infoFiles); })
      .subject(
          "load", 0.6, [&] { return loads(*decoder); }, makeDecoder);
  ratios.group("300,000 rows of generation 10, 100,000 photos", bench::PageCache::Hot)
      .floor("step through all rows", [&] { return stepsThroughEach(ten + "/Manifest.db"); })
      .subject(
          "load", 1.5, [&] { return loadsDatabase(*decoderOfTen); },
          [&] { decoderOfTen.emplace(ten); });
  ratios.figure("peak memory, 300,000 rows of generation 10", "MB", boundInMegabytes,
                [&] { return megabytesOfLoad(ten); });
  ratios.group("10,000 photos by unique path", bench::PageCache::Hot)
      .floor("scan", [&] { return photos.size() == photoCount && findsEachByScanning(photos); })
      .subject("look up", 0.01, [&] { return findsEach(finder, photos); });
  return ratios.run(argc, argv);
}
