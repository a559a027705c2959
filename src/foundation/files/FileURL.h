#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace snaplift {

// The file URL of an absolute path (RFC 8089): "file:///out/IMG%200001.JPG" of
// "/out/IMG 0001.JPG". Every byte but A to Z, a to z, 0 to 9, "-", ".", "_", "~" and "/" is
// percent-encoded, so that what reads the URL gets back the same bytes, whatever it thinks of
// character sets and reserved characters.
std::string fileURL(std::string_view path);

// The URLs of files, each a line, as "text/uri-list" has them (RFC 2483).
std::string uriList(const std::vector<std::string>& paths);

}  // namespace snaplift
