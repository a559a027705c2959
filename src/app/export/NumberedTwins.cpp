#include "app/export/NumberedTwins.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "backups/ImageItem.h"
#include "foundation/files/InputFile.h"
#include "foundation/files/NumberedName.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

bool hasTwin(const ExportedPhoto& photo) {
  const std::string folder(parentPath(photo.written));
  const std::string name(lastPathComponent(photo.written));
  const InputFile file(photo.written);
  for (std::uint64_t number = 0; file && number < maximumNumberedNames; ++number) {
    const std::string earlier = numberedName(photo.photo->fileName(), number);
    if (earlier == name) {
      return false;
    }
    const InputFile other(joinPath(folder, earlier));
    if (other && other.hasBytesOf(file)) {
      return true;
    }
  }
  return false;
}

}  // namespace

bool areMostlyTwins(const std::vector<ExportedPhoto>& arrived, const std::stop_token& stop) {
  const auto half = arrived.size() / 2;
  auto candidates = static_cast<std::size_t>(std::ranges::count_if(
      arrived, [](const auto& photo) { return photo.isRenamed && !photo.isSkipped; }));
  std::size_t twins = 0;
  for (auto photo = arrived.begin(); twins <= half && twins + candidates > half; ++photo) {
    if (stop.stop_requested()) {
      return false;
    }
    if (photo->isRenamed && !photo->isSkipped) {
      --candidates;
      twins += hasTwin(*photo) ? 1 : 0;
    }
  }
  return twins > half;
}

}  // namespace snaplift
