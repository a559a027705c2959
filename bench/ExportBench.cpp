// Exporting the photos of a backup, against a plain copy of the backup's folder by cp.

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/fs.h>
#endif

#include "bench/Ratio.h"
#include "foundation/FileDescriptor.h"
#include "foundation/FileWriting.h"
#include "foundation/Log.h"
#include "foundation/Parallel.h"
#include "foundation/Path.h"
#include "foundation/TemporaryFolder.h"
#include "library/BackupModel.h"
#include "samples/BackupWriter.h"

namespace snaplift::bench {
namespace {

namespace fs = std::filesystem;

constexpr int photoCount = 250;
constexpr std::size_t photoSizeInBytes = 2'000'000;
constexpr unsigned threads = 2;
constexpr std::size_t contentNameLength = 40;

// A backup of generation 5 whose content files are all photos, of bytes that no file system can
// compress.
void writePhotos(const std::string& folder) {
  samples::SampleBackup backup;
  backup.deviceName = "Bench";
  backup.productVersion = "5.1.1";
  for (int i = 0; i < photoCount; ++i) {
    backup.files.push_back({.domain = "CameraRollDomain",
                            .path = "Media/DCIM/100/IMG_" + std::to_string(1000 + i) + ".JPG",
                            .content = "photo"});
  }
  samples::writeBackup(folder, backup);
  std::mt19937_64 random(1);
  std::vector<std::uint64_t> bytes(photoSizeInBytes / sizeof(std::uint64_t));
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename().string().size() == contentNameLength) {
      std::ranges::generate(bytes, std::ref(random));
      std::ofstream(entry.path(), std::ios::binary)
          .write(reinterpret_cast<const char*>(bytes.data()), photoSizeInBytes);
    }
  }
}

// Whether the photos are to be on the disk, not only in the system's cache, when the time is taken.
enum class Flush { No, Yes };

// What snaplift-cli does: reads the manifest and exports every photo.
bool exportPhotos(const std::string& backup, const std::string& destination, Flush flush) {
  const auto model = BackupModel::initWithBackupAtPath(backup);
  if (!model) {
    return false;
  }
  std::atomic<std::uint64_t> exportedBytes = 0;
  const auto& items = model->imageItems();
  parallelFor(items.size(), threads, [&](std::size_t index) {
    thread_local Bytes buffer;
    exportedBytes += items[index]->extractPhoto(destination, buffer).bytes;
  });
  return exportedBytes == photoCount * photoSizeInBytes &&
         (flush == Flush::No || !flushFileSystem(destination));
}

// Exports in processes of their own, since each makes its temporary folder once, in $TMPDIR. Timed
// is what a person waits for, from the first look at the backup to the last photo; the removal of
// the temporary folder comes after it.
class Exporter {
public:
  bool run(const std::string& backup, const std::string& destination,
           const std::string& temporaryParent, Flush flush = Flush::No) {
    std::array<int, 2> pipe;
    if (::pipe(pipe.data()) != 0) {
      return false;
    }
    m_process = ::fork();
    if (m_process == 0) {
      ::setenv("TMPDIR", temporaryParent.c_str(), 1);
      const char isGood = exportPhotos(backup, destination, flush) ? 1 : 0;
      const bool isTold = ::write(pipe[1], &isGood, 1) == 1;
      removeTemporaryFolder();
      ::_exit(isTold ? 0 : 1);
    }
    ::close(pipe[1]);
    char isGood = 0;
    const bool isTold = ::read(pipe[0], &isGood, 1) == 1;
    ::close(pipe[0]);
    return isTold && isGood == 1;
  }

  void waitForEnd() {
    if (m_process > 0) {
      ::waitpid(std::exchange(m_process, -1), nullptr, 0);
    }
  }

private:
  pid_t m_process = -1;
};

// ext4 steps around the inodes of files that were deleted in the last minutes, one by one, which
// can take longer than writing the photos. So the folders of one parent are spread over the disk,
// as home folders are.
void spreadFoldersOf([[maybe_unused]] const std::string& parent) {
#ifdef FS_TOPDIR_FL
  const FileDescriptor folder(::open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  int flags = 0;
  if (folder && ::ioctl(folder.get(), FS_IOC_GETFLAGS, &flags) == 0) {
    flags |= FS_TOPDIR_FL;
    ::ioctl(folder.get(), FS_IOC_SETFLAGS, &flags);
  }
#endif
}

// A new and empty folder for each timing. What the last one took is given back by cutting its files
// to nothing, not by deleting them: see spreadFoldersOf.
class Destination {
public:
  explicit Destination(std::string parent) : m_parent(std::move(parent)) {}

  const std::string& path() const { return m_path; }

  void renew() {
    if (!m_path.empty()) {
      for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_path)) {
        if (entry.is_regular_file()) {
          fs::resize_file(entry.path(), 0);
        }
      }
    }
    m_path = joinPath(m_parent, "out " + std::to_string(++m_count));
    fs::create_directory(m_path);
  }

private:
  std::string m_parent;
  std::string m_path;
  int m_count = 0;
};

bool isOneFileSystem(const std::string& a, const std::string& b) {
  struct stat statusA;
  struct stat statusB;
  return ::stat(a.c_str(), &statusA) == 0 && ::stat(b.c_str(), &statusB) == 0 &&
         statusA.st_dev == statusB.st_dev;
}

}  // namespace
}  // namespace snaplift::bench

int main(int argc, char** argv) {
  using namespace snaplift;
  using namespace snaplift::bench;
  const TemporaryFolder folder({"/var/tmp"});  // on a disk, where exports go
  const std::string backup = joinPath(folder.path(), "backup");
  const std::string memory = "/dev/shm";
  const LogCapture silent([](const std::string&) {});
  spreadFoldersOf(folder.path());
  writePhotos(backup);
  Destination destination(folder.path());
  const auto copyByCp = [&] {
    return std::system(("cp -r '" + backup + "' '" + destination.path() + "'").c_str()) == 0;
  };
  Exporter exporter;
  const auto renew = [&] {
    exporter.waitForEnd();
    destination.renew();
    ::sync();  // nobody pays for what another variant left in the cache
  };

  Ratios ratios;
  ratios.group("export of 250 photos, with links", PageCache::Hot)
      .beforeEach(renew)
      .floor("cp -r", copyByCp)
      .subject("export", 0.75,
               [&] { return exporter.run(backup, destination.path(), folder.path()); });
  ratios.group("export of 250 photos to the disk itself", PageCache::Hot)
      .beforeEach(renew)
      .floor("cp -r, sync -f",
             [&] {
               return copyByCp() &&
                      std::system(("sync -f '" + destination.path() + "'").c_str()) == 0;
             })
      .subject("export and flush", 1.2,
               [&] { return exporter.run(backup, destination.path(), folder.path(), Flush::Yes); });
  if (fs::is_directory(memory) && !isOneFileSystem(memory, folder.path())) {
    ratios.group("export of 250 photos, from memory to disk", PageCache::Hot)
        .beforeEach(renew)
        .floor("cp -r", copyByCp)
        .subject("export", 1.35, [&] { return exporter.run(backup, destination.path(), memory); });
  } else {
    std::cerr << "left out: without links, which needs a second file system at " << memory << "\n";
  }
  const int status = ratios.run(argc, argv);
  exporter.waitForEnd();
  return status;
}
