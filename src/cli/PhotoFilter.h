#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "backups/ImageItem.h"
#include "foundation/TimeSpan.h"

namespace snaplift::cli {

// How a command line chooses photos: a photo has to meet everything that is given.
struct PhotoChoice {
  std::optional<std::string> since, until;  // texts of timeSpanOfWords(); both ends are chosen
  std::vector<std::string> patterns;        // of the shell, one of which has to match
  bool originals = false;                   // what the camera took, and nothing made from it
  std::optional<std::string> list;          // a file of unique paths, one a line; "-": the input
};

class PhotoFilter {
public:
  // Reads the list; nothing, and a message to the user, where it cannot be read.
  static std::optional<PhotoFilter> ofChoice(const PhotoChoice& choice);

  // To be asked once for each photo.
  bool takes(const ImageItem& photo);

  // The paths of the list that no photo had.
  std::vector<std::string> unknownPaths() const;

private:
  explicit PhotoFilter(const PhotoChoice& choice) : m_choice(choice) {}
  bool readList(const std::string& name);
  bool isInTime(const PhotoInfo& info) const;
  bool hasPattern(const PhotoInfo& info) const;

  PhotoChoice m_choice;
  TimeSpan m_span = {Instant::min(), Instant::max()};
  std::unordered_map<std::string, bool> m_list;  // whether a photo had the path
};

}  // namespace snaplift::cli
