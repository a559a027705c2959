// Listing a backup root: every backup's info file is read before the window shows anything. And the
// search of a disk for backups.

#include <cstdint>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <limits>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "backups/BackupController.h"
#include "backups/BackupSearch.h"
#include "bench/PeakMemory.h"
#include "bench/Ratio.h"
#include "foundation/Log.h"
#include "foundation/files/File.h"
#include "foundation/files/TemporaryFolder.h"
#include "samples/BackupWriter.h"

namespace snaplift {
namespace {

constexpr std::size_t backupCount = 10'000;
constexpr std::size_t deviceCount = 50;

// Backups of several devices with nothing in them; folder names are digests, as devices have them.
void writeRoot(const std::string& root) {
  for (std::size_t i = 0; i < backupCount; ++i) {
    const std::string number = std::to_string(i);
    const auto date =
        instantFromUnixTime(1'300'000'000 + static_cast<std::int64_t>(i * 7919 % backupCount));
    samples::writeBackup(root + "/" + samples::contentName("", number),
                         {.deviceName = "Phone " + std::to_string(i % deviceCount),
                          .productVersion = "5.0.1",
                          .date = date});
  }
}

// The floor: it knows how the files are called. Beside its info file it asks of each backup which
// folder it is and which manifest it has, as everybody has to.
bool readsEachInfoFile(const std::string& root) {
  char buffer[4096];
  struct stat status;
  std::size_t files = 0;
  for (const std::string& backup : folderEntries(root)) {
    const std::string folder = root + "/" + backup;
    const int file = ::open((folder + "/Info.plist").c_str(), O_RDONLY | O_CLOEXEC);
    files += ::read(file, buffer, sizeof buffer) > 0 && ::close(file) == 0 &&
             ::stat(folder.c_str(), &status) == 0 &&
             ::stat((folder + "/Manifest.mbdb").c_str(), &status) == 0;
  }
  return files == backupCount;
}

bool lists(const std::string& root) {
  const BackupController controller(root);
  std::size_t backups = 0;
  for (const auto& device : controller.devices()) {
    backups += device->backups().size();
  }
  return controller.devices().size() == deviceCount && backups == backupCount;
}

constexpr std::size_t treeFileCount = 1'000'000;
constexpr std::size_t filesOfAFolder = 20, foldersOfAFolder = 12;

// A tree of folders with files, and one backup at its end.
void writeTree(const std::string& top) {
  std::deque<std::string> folders = {top};
  std::filesystem::create_directories(top);
  for (std::size_t files = 0; files < treeFileCount; folders.pop_front()) {
    for (std::size_t i = 0; i < foldersOfAFolder && files < treeFileCount; ++i) {
      folders.push_back(folders.front() + "/folder " + std::to_string(i));
      ::mkdir(folders.back().c_str(), 0700);
      for (std::size_t j = 0; j < filesOfAFolder; ++j, ++files) {
        ::mknod((folders.back() + "/file " + std::to_string(j)).c_str(), S_IFREG | 0600, 0);
      }
    }
  }
  samples::writeBackup(folders.back() + "/backup", {.productVersion = "5.0.1"});
}

bool walksTree(const std::string& top) {
  return std::system(("find '" + top + "' -name Info.plist >/dev/null").c_str()) == 0;
}

bool searchesTree(const std::string& top) {
  std::size_t found = 0;
  searchForBackups({top}, {.found = [&](const auto&) { ++found; }});
  return found == 1;
}

}  // namespace
}  // namespace snaplift

int main(int argc, char** argv) {
  using namespace snaplift;
  const LogCapture withoutTheTerminal([](const std::string&) {});
  const std::string root = temporaryFolder() + "/root";
  writeRoot(root);

  bench::Ratios ratios;
  ratios.group("root of 10,000 backups", bench::PageCache::Hot)
      .floor("list it, read each info file", [&] { return readsEachInfoFile(root); })
      .subject("discover", 1.3, [&] { return lists(root); });
  const std::string tree = temporaryFolder() + "/tree";
  const auto written = [&] {
    if (!std::filesystem::exists(tree)) {
      writeTree(tree);
    }
  };
  ratios.figure("tree of 1,000,000 files: memory of the search", "bytes", 8'000'000, [&] {
    written();
    const auto peak = bench::peakMemoryInBytes([&] { return searchesTree(tree); });
    return peak ? static_cast<double>(*peak) : std::numeric_limits<double>::infinity();
  });
  ratios.group("tree of 1,000,000 files", bench::PageCache::Hot)
      .beforeEach(written)
      .floor("find -name Info.plist", [&] { return walksTree(tree); })
      .subject("search for backups", 1.3, [&] { return searchesTree(tree); });
  return ratios.run(argc, argv);
}
