// Exporting the photos of a backup, against a plain copy of the backup's folder by cp.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/statvfs.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/fs.h>
#endif

#include "backups/BackupModel.h"
#include "bench/Ratio.h"
#include "export/ExportJob.h"
#include "faults/Volume.h"
#include "foundation/Log.h"
#include "foundation/files/FileDescriptor.h"
#include "foundation/files/Path.h"
#include "foundation/files/TemporaryFolder.h"
#include "samples/BackupWriter.h"

namespace snaplift::bench {
namespace {

namespace fs = std::filesystem;

constexpr int photoCount = 250;
constexpr std::size_t photoSizeInBytes = 2'000'000;
constexpr unsigned threads = 2;
// Room for the backup, a copy, and what the file system keeps of one that was just cut to nothing.
constexpr std::size_t volumeSize = photoCount * photoSizeInBytes * 6;
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

// What snaplift-cli does: reads the manifest and exports every photo.
bool exportPhotos(const std::string& backup, const std::string& destination, bool flushes) {
  class Sum : public ExportObserver {
  public:
    void exportDidEnd(const ExportSummary& summary) override { m_summary = summary; }
    ExportSummary m_summary;
  } sum;
  const auto model = BackupModel::initWithBackupAtPath(backup);
  if (!model) {
    return false;
  }
  std::vector<PhotoToExport> photos;
  for (const auto& item : model->imageItems()) {
    photos.push_back({item.get()});
  }
  ExportJob(photos, destination, {.workers = threads, .flushes = flushes}, sum).run();
  return sum.m_summary.bytes == photoCount * photoSizeInBytes && !sum.m_summary.onFlush;
}

// The blocks that are taken on the file system of `folder`, in bytes.
std::uint64_t bytesTaken(const std::string& folder) {
  struct statvfs status;
  ::sync();
  return ::statvfs(folder.c_str(), &status) == 0
             ? std::uint64_t{status.f_blocks - status.f_bfree} * status.f_frsize
             : 0;
}

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

}  // namespace
}  // namespace snaplift::bench

int main(int argc, char** argv) {
  using namespace snaplift;
  using namespace snaplift::bench;
  const TemporaryFolder folder({"/var/tmp"});  // on a disk, where exports go
  const LogCapture silent([](const std::string&) {});
  spreadFoldersOf(folder.path());
  const std::string backup = joinPath(folder.path(), "backup");
  writePhotos(backup);
  Destination destination(folder.path());

  Ratios ratios;
  const auto compare = [&](const char* name, const std::string& source, Destination& into,
                           double bar, const std::string& cp) {
    ratios.group(name, PageCache::Hot)
        .beforeEach([&into] {
          into.renew();
          ::sync();  // nobody pays for what another variant left in the cache
        })
        .floor(cp,
               [&into, source, cp] {
                 return std::system((cp + " '" + source + "' '" + into.path() + "'").c_str()) == 0;
               })
        .subject("export", bar,
                 [&into, source] { return exportPhotos(source, into.path(), false); });
  };
  compare("export of 250 photos, one file system", backup, destination, 0.65, "cp -r");
  ratios.group("export of 250 photos to the disk itself", PageCache::Hot)
      .beforeEach([&] {
        destination.renew();
        ::sync();
      })
      .floor("cp -r, sync -f",
             [&] {
               return std::system(("cp -r '" + backup + "' '" + destination.path() +
                                   "' && sync -f '" + destination.path() + "'")
                                      .c_str()) == 0;
             })
      .subject("export and flush", 1.2,
               [&] { return exportPhotos(backup, destination.path(), true); });

  // File systems of the bench's own, in files; of these the first gets the photos of another one.
  struct Mounted {
    const char* name;
    Volume::Maker mount;
    double bar;
    bool sharesBlocks;
    std::unique_ptr<Volume> volume = nullptr;
    std::string source = {};
    std::unique_ptr<Destination> into = nullptr;
  };
  Mounted mounted[] = {{"ext4", Volume::ext4, 0.75, false},
                       {"Btrfs", Volume::btrfs, 0.3, true},
                       {"XFS", Volume::xfs, 0.3, true}};
  for (Mounted& m : mounted) {
    const std::string place = joinPath(folder.path(), m.name);
    fs::create_directory(place);
    m.volume = m.mount(place, place + ".image", volumeSize);
    if (!m.volume) {
      std::cerr << "left out: " << m.name << ", which needs root and the programs that make it\n";
      continue;
    }
    m.into = std::make_unique<Destination>(place);
    m.source = backup;
    if (m.sharesBlocks) {
      m.source = joinPath(place, "backup");
      writePhotos(m.source);
      static std::list<std::string> names;
      compare(names.emplace_back(std::string("export of 250 photos on ") + m.name).c_str(),
              m.source, *m.into, m.bar, "cp -r --reflink=never");
      continue;
    }
    compare("export of 250 photos to another file system", m.source, *m.into, m.bar, "cp -r");
    ratios.figure("bytes written for each byte of photos, to another file system", "", 1.05,
                  [&m, &backup] {
                    m.into->renew();
                    const std::uint64_t before = bytesTaken(m.into->path());
                    exportPhotos(backup, m.into->path(), true);
                    return static_cast<double>(bytesTaken(m.into->path()) - before) /
                           (photoCount * photoSizeInBytes);
                  });
  }
  return ratios.run(argc, argv);
}
