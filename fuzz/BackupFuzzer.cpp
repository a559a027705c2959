#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "FuzzFolder.h"
#include "backups/BackupController.h"
#include "foundation/Log.h"

namespace snaplift {
namespace {

// The names that an archive can give its files; the last two are the content of "a.jpg" in the
// domains of generations 5 and 4.
const std::array<std::string, 10> fileNames = {"Info.plist",
                                               "Manifest.plist",
                                               "Manifest.mbdb",
                                               "Manifest.mbdx",
                                               "a.mdinfo",
                                               "a.mddata",
                                               "a.mdbackup",
                                               "b.mdinfo",
                                               samples::contentName("CameraRollDomain", "a.jpg"),
                                               samples::contentName("MediaDomain", "a.jpg")};

// The archive: a byte that gives the version, unless a file does; then for each file a byte for its
// name, two for its length, high byte first, and as many of content.
void unpack(std::string_view archive, const fuzzing::FuzzFolder& folder) {
  const auto take = [&](std::size_t count) {
    const std::string_view taken = archive.substr(0, count);
    archive.remove_prefix(taken.size());
    return taken;
  };
  const auto byteOf = [](std::string_view text) {
    return static_cast<std::size_t>(static_cast<unsigned char>(text.front()));
  };
  const std::string version(1, static_cast<char>('1' + byteOf(take(1)) % 5));
  folder.write("root/backup/Info.plist", "<plist><dict><key>Product Version</key><string>" +
                                             version + "</string></dict></plist>");
  while (archive.size() >= 3) {
    const std::string& name = fileNames[byteOf(take(1)) % fileNames.size()];
    const std::size_t high = byteOf(take(1));
    folder.write("root/backup/" + name, take(high << 8 | byteOf(take(1))));
  }
}

// What a user does with a backup: list it, load it, look at photos, export some.
void use(BackupModel& backup, const std::string& destination) {
  std::size_t files = 0;
  backup.visitFiles([&](const BackedUpFile&) { ++files; });
  const auto& items = backup.imageItems();
  for (std::size_t i = 0; i < std::min<std::size_t>(items.size(), 4); ++i) {
    items[i]->imageRepresentation();
    items[i]->extract(destination);
  }
}

}  // namespace
}  // namespace snaplift

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace snaplift;
  static const fuzzing::FuzzFolder folder;
  if (size == 0) {
    return 0;
  }
  const LogCapture quiet([](const std::string&) {});
  folder.clear();
  unpack(textOf({bytes, size}), folder);
  folder.write("out/.keep", "");
  const BackupController controller(folder.path("root"));
  for (const auto& device : controller.devices()) {
    for (const auto& backup : device->backups()) {
      use(*backup, folder.path("out"));
    }
  }
  return 0;
}
