#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Bytes.h"
#include "foundation/FileError.h"
#include "foundation/FileManager.h"
#include "library/ImageDataSource.h"

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

// What came of one extraction, for reports.
struct ExtractOutcome {
  std::string written;             // the path of the new file; empty after a failure
  bool renamed = false;            // whether that is a numbered name, because the photo's was taken
  std::uint64_t bytes = 0;         // the size of the new file
  std::optional<FileError> error;  // absent after success
};

// One photo of a backup: what the browser shows, the pasteboard receives, and export copies into a
// folder. It is light (a backup has thousands) and holds no bytes: each thumbnail, pasteboard
// request and export reads the backup again.
//
// An extraction never replaces a file and never leaves a part of a photo under a photo's name. A
// name that is taken becomes "IMG_0001 1.JPG", then " 2", up to " 50".
//
// Different items may be used by different threads at the same time; two extractions of one item
// may not overlap. All else may be called from any thread, setPath apart.
class ImageItem : public FileManagerDelegate {
public:
  // `delegate` is the backup of the photo. It is not owned and outlives the item.
  ImageItem(std::string path, const ImageDataSource& delegate);
  ImageItem(const ImageItem&) = delete;
  ImageItem& operator=(const ImageItem&) = delete;

  // The unique path: the photo's identity, and the key to its bytes.
  const std::string& path() const { return m_path; }
  void setPath(std::string path) { m_path = std::move(path); }

  std::string fileName() const;       // "IMG_0001.JPG": the last component of the path
  std::string imageFileType() const;  // "JPG": its extension, letter case as stored
  std::string imageTitle() const { return fileName(); }
  std::string description() const { return fileName(); }

  // What the photo browser asks.
  const std::string& imageUID() const { return m_path; }
  std::string_view imageRepresentationType() const { return imageBrowserNSDataRepresentationType; }
  std::optional<Bytes> imageRepresentation() const;

  // Copies the photo into the folder `destination`. The answer is why it did not arrive; that is
  // one line in the system log, too: "failed (%d) to extract the file: %@".
  std::optional<FileError> extract(const std::string& destination);

  // The same without a log line, for callers that report by themselves. `buffer` is working space:
  // handed from photo to photo, it saves a new allocation for each.
  [[nodiscard]] ExtractOutcome extractPhoto(const std::string& destination, Bytes& buffer);

  // What the pasteboard asks: the types in the order of preference, how each is written, and the
  // data of one. The data of the file URL puts the photo into the temporary folder and is a list
  // of the one URL; absent for an unknown type, and where the photo cannot be read or written.
  std::vector<std::string_view> writableTypesForPasteboard() const;
  unsigned writingOptionsForTypePasteboard(std::string_view type) const;
  std::optional<Bytes> pasteboardPropertyListForType(std::string_view type);

  // What the file manager asks: a name that is taken is answered by a copy under the next numbered
  // one, every other error by no; a move by yes.
  std::optional<bool> fileManagerShouldProceedAfterErrorCopyingItemAtURLToURL(
      FileManager& fileManager, FileError& error, const CopySource& source,
      const std::string& destination) override;
  std::optional<bool> fileManagerShouldMoveItemAtURLToURL(FileManager&, const std::string&,
                                                          const std::string&) override {
    return true;
  }

private:
  ExtractOutcome extractAndLog(const std::string& destination);
  ExtractOutcome placePhoto(const std::string& destination, ByteView contents);
  ExtractOutcome copyPhoto(const CopySource& source, const std::string& destination);
  std::string numberedName() const;

  std::string m_path;
  const ImageDataSource& m_delegate;
  FileManager m_fm;  // its own, so that the questions of a copy come back to this item
  std::uint64_t m_fileNameExistsCounter = 0;  // of the last numbered name; 0: no collision pending
};

}  // namespace snaplift
