#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "backups/ImageDataSource.h"
#include "foundation/Bytes.h"
#include "foundation/files/FileError.h"

namespace snaplift {

// Type identifiers of the pasteboard: the platform's are MIME types.
inline constexpr std::string_view fileURLType = "text/uri-list";
inline constexpr std::string_view jpegType = "image/jpeg";
inline constexpr std::string_view pngType = "image/png";

// The writing option of a type whose data is made when a receiver asks for it, never before.
inline constexpr unsigned pasteboardWritingPromised = 512;

// What the photo browser gets as a photo's representation: the bytes of an encoded image file.
inline constexpr std::string_view imageBrowserNSDataRepresentationType =
    "IKImageBrowserNSDataRepresentationType";

class InputFile;
class NewFile;

// One photo of a backup: what the browser shows, the pasteboard receives, and export copies into a
// folder. It is light (a backup has thousands) and holds no bytes: each thumbnail, pasteboard
// request and export reads the backup again.
//
// An extraction never replaces a file and never leaves a part of a photo under a photo's name. A
// name that is taken becomes "IMG_0001 1.JPG", then " 2", up to " 50".
//
// Different items may be used by different threads at the same time; two extractions of one item
// may not overlap. All else may be called from any thread, setPath apart.
class ImageItem {
public:
  // `delegate` is the backup of the photo, which is number `index` of it. It is not owned and
  // outlives the item.
  ImageItem(std::string path, const ImageDataSource& delegate, std::size_t index = 0);
  ImageItem(const ImageItem&) = delete;
  ImageItem& operator=(const ImageItem&) = delete;

  // The unique path: the photo's identity, and the key to its bytes.
  const std::string& path() const { return m_path; }
  void setPath(std::string path) { m_path = std::move(path); }

  // What the backup knows of the photo, found out at each call: sort, filter and dates ask here. Of
  // a backup that knows nothing, what the path says. Valid as long as backup and item.
  PhotoInfo info() const;
  // Whether the photo's content file is there, and of the length that the backup states. Looks at
  // the file at each call.
  ContentState contentState() const { return m_delegate.contentState(m_index); }

  std::string fileName() const;       // "IMG_0001.JPG": the last component of the path
  std::string imageFileType() const;  // "JPG": its extension, letter case as stored
  std::string imageTitle() const { return fileName(); }
  std::string description() const { return fileName(); }

  // What the photo browser asks.
  const std::string& imageUID() const { return m_path; }
  std::string_view imageRepresentationType() const { return imageBrowserNSDataRepresentationType; }
  std::optional<Bytes> imageRepresentation() const;
  // The first `size` bytes of it, or all where there are fewer. Of a content file, no more is read.
  std::optional<Bytes> imageBeginning(std::size_t size) const;
  // The small picture that the device itself made of it: an encoded one, read at each call.
  std::optional<Bytes> thumbnail() const { return m_delegate.thumbnailData(m_index); }
  // How long a film plays, where its file says so; looks into the file at each call.
  std::optional<std::chrono::milliseconds> filmLength() const;

  // Copies the photo into the folder `destination`. The answer is why it did not arrive; that is
  // one line in the system log, too: "failed (%d) to extract the file: %@".
  std::optional<FileError> extract(const std::string& destination);

  // Puts the photo's bytes into `file`: the kernel copies the content file where that is the photo;
  // else the bytes go through a buffer that each thread keeps. For many threads at once.
  [[nodiscard]] std::optional<FileError> writeInto(NewFile& file) const;

  // Why the photo cannot be read, absent where it can; reads it whole.
  std::optional<FileError> readingError() const;

  // Whether `file` holds the photo's bytes and nothing else.
  bool isHeldBy(InputFile& file) const;
  // Whether another photo has the same bytes.
  bool hasBytesOf(const ImageItem& other) const;

  // What the pasteboard asks: the types in the order of preference, how each is written, and the
  // data of one. The data of the file URL puts the photo into the temporary folder and is a list
  // of the one URL; absent for an unknown type, and where the photo cannot be read or written.
  std::vector<std::string_view> writableTypesForPasteboard() const;
  unsigned writingOptionsForTypePasteboard(std::string_view type) const;
  std::optional<Bytes> pasteboardPropertyListForType(std::string_view type);

private:
  // Gives the photo to one of two functions: as its content file where that is the photo, else as
  // bytes, which last as long as the call. The answer is theirs, or why the photo cannot be read.
  using FileReader = std::function<std::optional<FileError>(InputFile& content)>;
  using BytesReader = std::function<std::optional<FileError>(ByteView contents)>;
  std::optional<FileError> read(const FileReader& readFile, const BytesReader& readBytes) const;

  std::optional<FileError> extractInto(const std::string& destination, std::string& written);
  std::optional<FileError> extractAndLog(const std::string& destination, std::string& written);

  std::string m_path;
  const ImageDataSource& m_delegate;
  const std::size_t m_index;
  std::uint64_t m_fileNameExistsCounter = 0;  // of the last numbered name; 0: no collision pending
};

}  // namespace snaplift
