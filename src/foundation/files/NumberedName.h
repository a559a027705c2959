#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/files/FileError.h"
#include "foundation/files/NewFile.h"

namespace snaplift {

// Numbered names that are tried before a folder counts as full of them.
inline constexpr std::uint64_t maximumNumberedNames = 50;

// "IMG_0001 3.JPG" for "IMG_0001.JPG" and 3; the name itself for 0. One without an extension ends
// in a dot then.
std::string numberedName(std::string_view name, std::uint64_t number);

// Publishes `file` under its name or, where that is taken, under the first numbered one that is
// free; file.name() then says which. `counter` is the last number that was tried: it begins at 0,
// is 0 again after success and when all names are taken, and stays where another error came up, so
// that a later call numbers on.
[[nodiscard]] std::optional<FileError> publishNumbered(NewFile& file, std::uint64_t& counter);

}  // namespace snaplift
