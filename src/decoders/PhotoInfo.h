#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/Time.h"

namespace snaplift {

// Where a photo comes from, by its place on the device.
enum class PhotoKind {
  Original,  // as the camera, or whoever saved it, put it into the camera roll
  Edited,    // an original as the owner changed it
  Cloud,     // of the owner's cloud library
  Derived,   // anything else: thumbnails, previews, metadata
};

enum class PhotoMedia { Photo, Film };

// What a backup knows of one photo without reading its content, for whoever sorts, names, dates or
// counts photos. It is made from the decoder's record whenever it is asked for, and costs no memory
// that is kept. The texts are the decoder's: valid as long as the backup.
struct PhotoInfo {
  std::string_view devicePath;        // within its domain, as the manifest gives it
  std::optional<std::uint64_t> size;  // in bytes, where the backup states it

  // Of the file on the device; absent where the backup has none, or has the start of 1970, which is
  // what a device writes for a time that it does not know.
  std::optional<Instant> modificationDate;
  std::optional<Instant> birthDate;

  PhotoKind kind = PhotoKind::Derived;
  PhotoMedia media = PhotoMedia::Photo;

  // What a path alone says: the path itself, kind and media.
  static PhotoInfo ofPath(std::string_view devicePath);

  // The last component of the path: "IMG_0001.JPG".
  std::string_view name() const;

  // What people call the photo's date: its birth, else its modification.
  std::optional<Instant> date() const { return birthDate ? birthDate : modificationDate; }
};

// "Media/DCIM/100APPLE/IMG_0001.JPG" is an original, and so on; letter case counts.
PhotoKind kindOfPath(std::string_view devicePath);

// By the extension, in any letter case; absent for what is neither a photo nor a film.
std::optional<PhotoMedia> mediaOfPath(std::string_view devicePath);

// Whether the path is that of a photo or a film that people would call theirs: of any kind that is
// not derived.
bool isInCameraRoll(std::string_view devicePath);

// What a thumbnail that the device made is the picture of, as a path below "Media/":
// "DCIM/100APPLE/IMG_0001.MOV" for
// "Media/PhotoData/Thumbnails/V2/DCIM/100APPLE/IMG_0001.MOV/5005.JPG". Empty for every other path.
std::string_view mediaOfThumbnail(std::string_view devicePath);

// `time`, unless it is the start of 1970.
std::optional<Instant> knownTime(std::optional<Instant> time);

// What is there of a photo's content file.
enum class ContentState {
  Whole,       // as far as can be told without reading it
  Short,       // of another length than the backup states
  Unreadable,  // there, but the process has not the right to read it
  Missing,
};

// The state of the content file at `path`. `size` is the length that the backup states for it.
ContentState contentStateOfFile(const std::string& path, std::optional<std::uint64_t> size);

}  // namespace snaplift
