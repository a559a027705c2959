#pragma once

#include <string_view>

namespace snaplift {

// Which files of a backup are photos. The two generations of manifests ask differently, and both
// questions disregard letter case.

// Generations 5 and 4: the path ends in the letters png or jpg; no dot is required before them.
bool endsLikePhoto(std::string_view path);

// Generations 3 and 2: the path's extension is png or jpg.
bool hasPhotoExtension(std::string_view path);

}  // namespace snaplift
