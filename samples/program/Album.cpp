#include "program/Album.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <thread>
#include <utility>

#include "pictures/Landscape.h"
#include "pictures/PhotoFile.h"

namespace snaplift::samples {
namespace {

std::string painted(const Shot& shot) {
  const Image picture = paintLandscape(shot.seed, shot.width, shot.height);
  return shot.source == Source::Screen
             ? pngPicture(picture)
             : jpegPhoto(picture, {.orientation = shot.orientation, .taken = shot.taken});
}

}  // namespace

Album::Album(const std::vector<Shot>& shots) {
  for (const Shot& shot : shots) {
    m_files[shot];
  }
  std::vector<std::pair<const Shot, std::string>*> files;
  std::ranges::transform(m_files, std::back_inserter(files), [](auto& file) { return &file; });
  // Shots are handed out one by one: each takes a second or more, and no core is idle at the end.
  std::atomic<std::size_t> next = 0;
  std::vector<std::jthread> painters;  // ends, and is joined, before what it works on goes
  const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
  for (unsigned i = 0; i < cores; ++i) {
    painters.emplace_back([&] {
      for (std::size_t file = next++; file < files.size(); file = next++) {
        files[file]->second = painted(files[file]->first);
      }
    });
  }
}

}  // namespace snaplift::samples
