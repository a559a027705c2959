#include "foundation/files/FileURL.h"

#include "foundation/Bytes.h"
#include "foundation/Digest.h"

namespace snaplift {
namespace {

bool standsForItself(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
         std::string_view("-._~/").find(c) != std::string_view::npos;
}

}  // namespace

std::string fileURL(std::string_view path) {
  std::string url = "file://";
  for (std::size_t i = 0; i < path.size(); ++i) {
    if (standsForItself(path[i])) {
      url += path[i];
    } else {
      url.append("%").append(hexText(bytesOf(path.substr(i, 1)), HexCase::Upper));
    }
  }
  return url;
}

std::string uriList(const std::vector<std::string>& paths) {
  std::string list;
  for (const std::string& path : paths) {
    list += fileURL(path) + "\r\n";
  }
  return list;
}

}  // namespace snaplift
