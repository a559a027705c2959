#pragma once

#include <string>
#include <vector>

namespace snaplift {

// The photos that a decoder finds in the backup in `folder`, by their paths inside it, in order.
template <class Decoder>
std::vector<std::string> listedPhotos(const std::string& folder) {
  Decoder decoder(folder);
  std::vector<std::string> paths;
  for (const std::string& uniquePath : decoder.imageFilePaths()) {
    paths.push_back(uniquePath.substr(folder.size() + 1));
  }
  return paths;
}

}  // namespace snaplift
