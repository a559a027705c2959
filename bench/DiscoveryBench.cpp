// Listing a backup root: every backup's info file is read before the window shows anything.

#include <cstdint>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "bench/Ratio.h"
#include "foundation/File.h"
#include "foundation/Log.h"
#include "foundation/TemporaryFolder.h"
#include "library/BackupController.h"
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

std::string infoFileOf(const std::string& root, const std::string& backup) {
  return root + "/" + backup + "/Info.plist";
}

// The floor: it knows how the files are called.
bool readsEachInfoFile(const std::string& root) {
  char buffer[4096];
  std::size_t files = 0;
  for (const std::string& backup : folderEntries(root)) {
    const int file = ::open(infoFileOf(root, backup).c_str(), O_RDONLY | O_CLOEXEC);
    files += ::read(file, buffer, sizeof buffer) > 0 && ::close(file) == 0;
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
  return ratios.run(argc, argv);
}
