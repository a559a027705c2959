#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "foundation/Time.h"

namespace snaplift::samples {

// A camera of newer handsets takes HEIC photos, and films; a device makes small pictures of both.
enum class Source { Camera, Screen, NewerCamera, Film, Thumbnail };

// Which landscape one photo shows, and how it was taken.
struct Shot {
  Source source = Source::Camera;
  std::uint32_t seed = 0;  // of the picture
  int width = 0, height = 0;
  int orientation = 1;
  Instant taken = {};

  auto operator<=>(const Shot&) const = default;
};

// Painted photos as files. Painting is slow, so all shots are painted together, on all cores, and
// each only once, however many backups hold it.
class Album {
public:
  explicit Album(const std::vector<Shot>& shots);

  // The file of one of those shots. A HEIC photo is empty in a build without libheif.
  const std::string& fileOf(const Shot& shot) const { return m_files.at(shot); }

private:
  std::map<Shot, std::string> m_files;
};

}  // namespace snaplift::samples
