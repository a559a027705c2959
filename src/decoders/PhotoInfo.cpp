#include "decoders/PhotoInfo.h"

#include <algorithm>
#include <array>
#include <system_error>

#include "foundation/files/File.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

constexpr std::string_view cameraFolders = "Media/DCIM/";
constexpr std::string_view edits = "Media/PhotoData/Mutations/";
constexpr std::string_view cloudLibrary = "Media/PhotoData/CPLAssets/";
constexpr std::string_view thumbnails = "Media/PhotoData/Thumbnails/V2/";

constexpr std::array<std::string_view, 10> photoExtensions = {"jpg", "jpeg", "png",  "heic", "heif",
                                                              "gif", "tif",  "tiff", "webp", "dng"};
constexpr std::array<std::string_view, 4> filmExtensions = {"mov", "mp4", "m4v", "3gp"};

template <std::size_t size>
bool contains(const std::array<std::string_view, size>& extensions, std::string_view extension) {
  return std::ranges::any_of(extensions, [&](std::string_view candidate) {
    return equalsIgnoringCase(candidate, extension);
  });
}

// "100APPLE": three digits and five characters.
bool isCameraFolder(std::string_view name) {
  return name.size() == 8 && std::ranges::all_of(name.substr(0, 3), [](char digit) {
           return digit >= '0' && digit <= '9';
         });
}

}  // namespace

PhotoKind kindOfPath(std::string_view devicePath) {
  if (devicePath.starts_with(cameraFolders)) {
    const std::string_view rest = devicePath.substr(cameraFolders.size());
    const std::size_t slash = rest.find('/');
    const bool isDirectlyInside =
        slash != std::string_view::npos && rest.find('/', slash + 1) == std::string_view::npos;
    return isDirectlyInside && isCameraFolder(rest.substr(0, slash)) ? PhotoKind::Original
                                                                     : PhotoKind::Derived;
  }
  if (devicePath.starts_with(edits) && pathStem(devicePath) == "FullSizeRender") {
    return PhotoKind::Edited;
  }
  return devicePath.starts_with(cloudLibrary) ? PhotoKind::Cloud : PhotoKind::Derived;
}

std::optional<PhotoMedia> mediaOfPath(std::string_view devicePath) {
  const std::string_view extension = pathExtension(devicePath);
  if (contains(photoExtensions, extension)) {
    return PhotoMedia::Photo;
  }
  return contains(filmExtensions, extension) ? std::optional(PhotoMedia::Film) : std::nullopt;
}

bool isInCameraRoll(std::string_view devicePath) {
  return mediaOfPath(devicePath) && kindOfPath(devicePath) != PhotoKind::Derived;
}

std::string_view mediaOfThumbnail(std::string_view devicePath) {
  return devicePath.starts_with(thumbnails) && equalsIgnoringCase(pathExtension(devicePath), "jpg")
             ? parentPath(devicePath.substr(thumbnails.size()))
             : std::string_view();
}

std::optional<Instant> knownTime(std::optional<Instant> time) {
  return time == Instant() ? std::nullopt : time;
}

PhotoInfo PhotoInfo::ofPath(std::string_view devicePath) {
  PhotoInfo info;
  info.devicePath = devicePath;
  info.kind = kindOfPath(devicePath);
  info.media = mediaOfPath(devicePath).value_or(PhotoMedia::Photo);
  return info;
}

std::string_view PhotoInfo::name() const {
  return lastPathComponent(devicePath);
}

ContentState contentStateOfFile(const std::string& path, std::optional<std::uint64_t> size) {
  std::error_code error;
  const std::optional<FileAttributes> attributes = fileAttributes(path, error);
  if (!attributes) {
    return error == std::errc::permission_denied ? ContentState::Unreadable : ContentState::Missing;
  }
  if (attributes->type != FileType::Regular) {
    return ContentState::Missing;
  }
  if (!mayRead(path)) {
    return ContentState::Unreadable;
  }
  return size && *size != attributes->size ? ContentState::Short : ContentState::Whole;
}

}  // namespace snaplift
