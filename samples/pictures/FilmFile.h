#pragma once

#include <string>
#include <vector>

namespace snaplift::samples {

// The file of a film without sound: a QuickTime movie whose frames are JPEG files of one size, so
// many a second.
std::string jpegFilm(const std::vector<std::string>& frames, int width, int height,
                     int framesOfSecond);

}  // namespace snaplift::samples
