#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzFolder.h"
#include "Require.h"
#include "decoders/iOS10Decoder.h"
#include "foundation/Log.h"

// The bytes of a "Manifest.db"; where the last of them is odd, half of the bytes are its log.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace snaplift;
  using fuzzing::require;
  static const fuzzing::FuzzFolder folder;
  const LogCapture quiet([](const std::string&) {});
  const std::string_view input = textOf({bytes, size});
  const bool hasLog = size > 0 && bytes[size - 1] % 2 == 1;
  const std::size_t main = hasLog ? size / 2 : size;
  folder.clear();
  folder.write("Manifest.db", input.substr(0, main));
  if (hasLog) {
    folder.write("Manifest.db-wal", input.substr(main));
  }
  iOS10Decoder decoder(folder.path(""));
  const std::size_t photos = decoder.imageFilePaths().size();
  for (std::size_t i = 0; i < photos; ++i) {
    const PhotoInfo info = decoder.photoInfo(i);
    require(info.kind != PhotoKind::Derived && mediaOfPath(info.devicePath).has_value());
    require(i == 0 || decoder.photoInfo(i - 1).devicePath < info.devicePath);
    require(decoder.contentState(i) == ContentState::Missing);
  }
  std::size_t files = 0;
  decoder.visitFiles([&](const BackedUpFile&) { ++files; });
  // Nothing was written beside it.
  const auto entries = std::filesystem::directory_iterator(folder.path(""));
  require(std::distance(begin(entries), end(entries)) == (hasLog ? 2 : 1));
  return 0;
}
