#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace snaplift {

// How long the film in the file `path` plays, by the header of its movie box (MP4, QuickTime).
// Reads some bytes of each box on the way and nothing of pictures or sound, so it costs the same
// for a film of any size. Nothing for any other file, and where the header states no length or more
// than a day. Any thread.
std::optional<std::chrono::milliseconds> lengthOfFilm(const std::string& path);

}  // namespace snaplift
