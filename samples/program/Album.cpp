#include "program/Album.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <thread>
#include <utility>
#include <vector>

#include "pictures/FilmFile.h"
#include "pictures/HeicPhoto.h"
#include "pictures/Landscape.h"
#include "pictures/PhotoFile.h"

namespace snaplift::samples {
namespace {

// The camera pans over a view that is wider than its picture.
std::string panned(const Shot& shot) {
  constexpr int framesOfSecond = 12;
  constexpr int frameCount = 5 * framesOfSecond;
  const Image view = paintLandscape(shot.seed, shot.width * 3 / 2, shot.height);
  std::vector<std::string> frames;
  for (int frame = 0; frame < frameCount; ++frame) {
    Image picture(shot.width, shot.height);
    const int left = frame * (view.width - shot.width) / frameCount;
    for (int y = 0; y < shot.height; ++y) {
      std::copy_n(view.pixel(left, y), 3 * shot.width, picture.pixel(0, y));
    }
    frames.push_back(plainJpeg(picture));
  }
  return jpegFilm(frames, shot.width, shot.height, framesOfSecond);
}

CameraData cameraOf(const Shot& shot) {
  constexpr double latitude = 47.0502, longitude = 8.3093;  // by a lake
  CameraData camera{.orientation = shot.orientation,
                    .taken = shot.taken,
                    .maker = "Sample",
                    .model = "Sample Handset",
                    .exposure = {{.perSecond = 60 + shot.seed % 8 * 55,
                                  .apertureTenths = 28,
                                  .iso = 80 + shot.seed % 4 * 80}}};
  if (shot.seed % 2 == 0) {
    camera.position = {{.latitude = latitude + shot.seed % 10 * 0.01, .longitude = longitude}};
  }
  return camera;
}

std::string painted(const Shot& shot) {
  if (shot.source == Source::Film) {
    return panned(shot);
  }
  const Image picture = paintLandscape(shot.seed, shot.width, shot.height);
  switch (shot.source) {
    case Source::Screen:
      return pngPicture(picture);
    case Source::NewerCamera:
      return heicPhoto(picture);
    case Source::Thumbnail:
      return plainJpeg(picture);
    default:
      return jpegPhoto(picture, cameraOf(shot));
  }
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
