#include "program/Rolls.h"

#include <utility>

#include "foundation/files/Path.h"

namespace snaplift::samples {
namespace {

constexpr std::int64_t secondsPerDay = 86400;
constexpr const char* cameraFolder = "Media/DCIM/100APPLE";

std::string photoName(int number, const char* extension) {
  return "IMG_" + std::to_string(10000 + number).substr(1) + extension;
}

std::string originalPath(int number, const char* extension) {
  return joinPath(cameraFolder, photoName(number, extension));
}

Shot screenShot(const Roll& roll, int number, int divisor) {
  const std::uint32_t seed = roll.firstSeed + 100 + static_cast<std::uint32_t>(number);
  return {Source::Screen, seed, 640 / divisor,
          960 / divisor,  1,    noonOf(roll.firstDay + 11L * number)};
}

// Adds a shot of a newer handset, and the device's own thumbnail of it.
void add(std::vector<PlacedShot>& shots, const std::string& path, const Shot& shot) {
  constexpr int side = 360;
  Shot thumbnail = shot;
  thumbnail.source = Source::Thumbnail;
  thumbnail.width = side;
  thumbnail.height = side * shot.height / shot.width;
  shots.push_back({path, shot});
  shots.push_back(
      {joinPath(joinPath("Media/PhotoData/Thumbnails/V2", path.substr(6)), "5005.JPG"), thumbnail});
}

}  // namespace

Instant noonOf(std::int64_t day) {
  return instantFromUnixTime(day * secondsPerDay + 43200);
}

std::vector<PlacedShot> oldRoll(const Roll& roll, int divisor) {
  std::vector<PlacedShot> shots;
  for (int i = 0; i < roll.photos; ++i) {
    // Most pictures are taken upright; each orientation comes up somewhere.
    const auto seed = roll.firstSeed + static_cast<std::uint32_t>(i);
    const int orientation = i % 3 == 2 ? 1 + static_cast<int>(seed / 3 % 8) : 1;
    const bool portrait = orientation >= 5;
    const int width = roll.camera.width / divisor;
    const int height = roll.camera.height / divisor;
    shots.push_back({originalPath(i + 1, ".JPG"),
                     {Source::Camera, seed, portrait ? height : width, portrait ? width : height,
                      orientation, noonOf(roll.firstDay + 23L * i)}});
  }
  for (int i = 0; i < roll.screens; ++i) {
    shots.push_back({originalPath(roll.photos + i + 1, ".PNG"), screenShot(roll, i, divisor)});
  }
  for (int i = 0; i < roll.films; ++i) {
    const auto seed = roll.firstSeed + 200 + static_cast<std::uint32_t>(i);
    shots.push_back(
        {originalPath(roll.photos + roll.screens + i + 1, ".MOV"),
         {Source::Film, seed, 480 / divisor, 360 / divisor, 1, noonOf(roll.firstDay + 31L * i)}});
  }
  return shots;
}

std::vector<PlacedShot> newRoll(const Roll& roll, int divisor) {
  enum Turn { Plain, Live, FilmAlone, Edited, turns };
  std::vector<PlacedShot> shots;
  for (int i = 0; i < roll.photos; ++i) {
    const int turn = i % turns;
    const Shot photo = {Source::NewerCamera,
                        roll.firstSeed + static_cast<std::uint32_t>(i),
                        roll.camera.width / divisor,
                        roll.camera.height / divisor,
                        1,
                        noonOf(roll.firstDay + 17L * i)};
    Shot film = photo;
    film.source = Source::Film;
    film.width = 640 / divisor;
    film.height = 480 / divisor;
    if (turn != FilmAlone) {
      add(shots, originalPath(i + 1, ".HEIC"), photo);
    }
    if (turn == Live || turn == FilmAlone) {
      add(shots, originalPath(i + 1, ".MOV"), film);
    }
    if (turn == Edited) {
      // The owner cut it square.
      Shot edited = photo;
      edited.source = Source::Camera;
      edited.width = photo.height;
      shots.push_back({joinPath("Media/PhotoData/Mutations/DCIM/100APPLE",
                                photoName(i + 1, "/Adjustments/FullSizeRender.jpg")),
                       edited});
    }
  }
  for (int i = 0; i < roll.screens; ++i) {
    add(shots, originalPath(roll.photos + i + 1, ".PNG"), screenShot(roll, i, divisor));
  }
  Shot cloud = shots.front().shot;
  cloud.seed += 50;
  add(shots, "Media/PhotoData/CPLAssets/group17/6C5C2A4E-7D0B-4B8E-9F43-2F1D6A3B9C10.HEIC", cloud);
  return shots;
}

}  // namespace snaplift::samples
