#include "decoders/PhotoSuffix.h"

#include "foundation/files/Path.h"

namespace snaplift {

bool endsLikePhoto(std::string_view path) {
  return endsWithIgnoringCase(path, "png") || endsWithIgnoringCase(path, "jpg");
}

bool hasPhotoExtension(std::string_view path) {
  const std::string_view extension = pathExtension(path);
  return equalsIgnoringCase(extension, "png") || equalsIgnoringCase(extension, "jpg");
}

}  // namespace snaplift
