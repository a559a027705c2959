#include <QCoreApplication>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>
#include <array>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <malloc.h>

#include "app/photos/BackupPhotos.h"
#include "backups/BackupModel.h"
#include "bench/CameraPhoto.h"
#include "bench/PeakMemory.h"
#include "bench/Ratio.h"
#include "bench/ViewMain.h"
#include "foundation/Log.h"
#include "foundation/files/Path.h"
#include "foundation/files/TemporaryFolder.h"
#include "samples/BackupWriter.h"
#include "support/photos/HeicPicture.h"
#include "widgets/photogrid/ImageBrowserView.h"

// What the program holds in memory while the largest of backups is scrolled through, and whether it
// gives everything back.
namespace snaplift::bench {
namespace {

namespace fs = std::filesystem;
using samples::Generation;

constexpr double megabyte = 1e6;
constexpr int rounds = 10;

std::string photoPath(int i, const char* extension) {
  return "Media/DCIM/" + std::to_string(100 + i / 1000) + "APPLE/IMG_" + std::to_string(i) +
         extension;
}

// A backup whose manifest tells of `photos` photos, and of `others` other files, whose content is
// not written. Without contents it has no photos' bytes either, which can then be put in place.
void writeBackup(const std::string& folder, Generation generation, const char* version, int photos,
                 bool hasContents = true, int others = 0, const char* extension = ".JPG") {
  samples::SampleBackup backup{
      .generation = generation, .deviceName = "Phone", .productVersion = version};
  for (int i = 0; i < photos + others; ++i) {
    const bool isPhoto = i < photos;
    backup.files.push_back(
        {.domain = isPhoto ? std::string(samples::photoDomain(generation)) : "AppDomain",
         .path = isPhoto ? photoPath(i, extension) : "Library/Caches/file " + std::to_string(i),
         .content = "bytes",
         .modificationDate = static_cast<std::uint32_t>(1'300'000'000 + i),
         .contentMissing = !isPhoto || !hasContents});
  }
  samples::writeBackup(folder, backup);
}

// Makes `folder` the backup of a whole device, with photos of 12 megapixels each. A few of them
// stand for all: a reader cannot tell, and 20,000 would take 60 GB.
void writeDevice(const std::string& folder, Generation generation, const char* version, int photos,
                 const char* extension, const std::vector<QByteArray>& contents) {
  constexpr int otherFiles = 80'000;
  writeBackup(folder, generation, version, photos, false, otherFiles, extension);
  const int different = static_cast<int>(contents.size());
  const auto place = [&](int i) {
    const std::string name =
        samples::contentName(samples::photoDomain(generation), photoPath(i, extension));
    return generation == Generation::Ten ? joinPath(folder, name.substr(0, 2) + "/" + name)
                                         : joinPath(folder, name);
  };
  for (int i = 0; i < photos; ++i) {
    if (i < different) {
      samples::writeFile(place(i), contents[static_cast<std::size_t>(i)].toStdString());
    } else {
      fs::create_directories(parentPath(place(i)));
      fs::create_hard_link(place(i % different), place(i));
    }
  }
}

std::vector<QByteArray> cameraPhotos() {
  return {cameraPhoto(0), cameraPhoto(1), cameraPhoto(2), cameraPhoto(3)};
}

// The same as a later device writes them; none in a build without libheif.
std::vector<QByteArray> heicPhotos() {
  constexpr int previewSide = 320;
  std::vector<QByteArray> photos;
  for (const QByteArray& photo : {cameraPhoto(0), cameraPhoto(1)}) {
    photos.push_back(test::heicOf(QImage::fromData(photo), 1, 8, previewSide));
  }
  return photos.front().isEmpty() ? std::vector<QByteArray>() : photos;
}

// Shows a backup and scrolls from its first photo to its last, a row each frame. The answer is the
// most memory that was resident meanwhile: of this process, and beside it of the processes that
// decode its pictures.
double peakOfScrolling(const std::string& folder, int photos) {
  resetPeakResidentMemory();
  const auto model = BackupModel::initWithBackupAtPath(folder);
  if (!model || model->imageItems().size() != static_cast<std::size_t>(photos)) {
    throw std::runtime_error("the backup cannot be loaded");
  }
  BackupPhotos source;
  source.setContent(model.get());
  ImageBrowserView view;
  view.resize(1'000, 800);
  view.setDataSource(&source);
  view.show();
  QTimer scroll;
  std::uint64_t decoders = 0;
  QObject::connect(&scroll, &QTimer::timeout, &view, [&] {
    decoders = std::max(decoders, childrenResidentMemoryInBytes());
    QScrollBar* bar = view.verticalScrollBar();
    if (bar->value() == bar->maximum()) {
      QCoreApplication::exit();
    }
    bar->setValue(bar->value() + view.viewport()->height() / 4);
  });
  scroll.start(16);
  QCoreApplication::exec();
  return static_cast<double>(peakResidentMemoryInBytes() + decoders) / megabyte;
}

double bytesInUse() {
  const auto info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd);
}

void loadAndForget(const std::vector<std::string>& folders) {
  for (const std::string& folder : folders) {
    const auto model = BackupModel::initWithBackupAtPath(folder);
    if (!model || model->imageItems().empty()) {
      throw std::runtime_error("the backup cannot be loaded");
    }
  }
}

// What ten rounds leave allocated that one did not. The allocator's own caches grow by a few
// thousand bytes and then no more; a photo's item lost in each of the 100 loads would be 20,000.
double growthOfLoading(const std::vector<std::string>& folders) {
  loadAndForget(folders);
  const double before = bytesInUse();
  for (int round = 0; round < rounds; ++round) {
    loadAndForget(folders);
  }
  return bytesInUse() - before;
}

std::vector<std::string> writeTenBackups(const std::string& folder) {
  constexpr std::array<std::pair<Generation, const char*>, 5> generations = {
      {{Generation::TwoSingleForm, "1.1.4"},
       {Generation::TwoPairForm, "2.2.1"},
       {Generation::Three, "3.1.3"},
       {Generation::Four, "4.2.1"},
       {Generation::Five, "5.1.1"}}};
  std::vector<std::string> folders;
  for (const char* device : {"a", "b"}) {
    for (const auto& [generation, version] : generations) {
      folders.push_back(joinPath(folder, std::string(device) + version));
      writeBackup(folders.back(), generation, version, 1'000);
    }
  }
  return folders;
}

}  // namespace

int runViewBench(int argc, char** argv) {
  constexpr int photos = 20'000;
  ::mallopt(M_ARENA_MAX, 1);  // mallinfo2 counts one arena only
  const LogCapture silent([](const std::string&) {});
  const TemporaryFolder folder({"/var/tmp"});
  const std::string large = joinPath(folder.path(), "large");
  const std::string latest = joinPath(folder.path(), "latest");
  Ratios ratios;
  ratios.figure("ten loads of ten backups: growth", "bytes", 10'000,
                [&] { return growthOfLoading(writeTenBackups(folder.path())); });
  ratios.figure("20,000 photos of 12 megapixels, scrolled through", "MB of all processes", 600,
                [&] {
                  writeDevice(large, Generation::Five, "5.1.1", photos, ".JPG", cameraPhotos());
                  return peakOfScrolling(large, photos);
                });
  const std::vector<QByteArray> heic = heicPhotos();
  if (!heic.empty()) {
    ratios.figure("20,000 HEIC photos of 12 megapixels, scrolled through", "MB of all processes",
                  600, [&] {
                    writeDevice(latest, Generation::Ten, "17.5.1", photos, ".HEIC", heic);
                    return peakOfScrolling(latest, photos);
                  });
  }
  return ratios.run(argc, argv);
}

}  // namespace snaplift::bench
