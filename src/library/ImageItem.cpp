#include "library/ImageItem.h"

#include <cerrno>
#include <utility>

#include "foundation/FileURL.h"
#include "foundation/FileWriting.h"
#include "foundation/Log.h"
#include "foundation/Path.h"
#include "foundation/TemporaryFolder.h"
#include "library/FileNameReservation.h"

namespace snaplift {
namespace {

// Numbered names that are tried before a folder counts as full of them.
constexpr std::uint64_t maximumNumberedNames = 50;

// The largest buffer that a thread keeps between two extractions; photos of old handsets have a few
// megabytes.
constexpr std::size_t maximumKeptBufferInBytes = std::size_t{32} << 20;

ExtractOutcome failure(FileError error) {
  return {{}, false, 0, std::move(error)};
}

ExtractOutcome success(std::string written, bool renamed, ByteView contents) {
  return {std::move(written), renamed, contents.size(), std::nullopt};
}

// Puts the bytes into the temporary folder under the photo's name.
std::optional<FileError> writeTemporaryFile(const std::string& path, ByteView contents) {
  // Without a folder the path would be a name in the process's current one.
  return temporaryFolder().empty() ? FileError::ofSystem(ENOENT, path) : writeFile(path, contents);
}

}  // namespace

ImageItem::ImageItem(std::string path, const ImageDataSource& delegate)
    : m_path(std::move(path)), m_delegate(delegate) {
  m_fm.setDelegate(this);
}

std::string ImageItem::fileName() const {
  return std::string(lastPathComponent(m_path));
}

std::string ImageItem::imageFileType() const {
  return std::string(pathExtension(m_path));
}

std::optional<Bytes> ImageItem::imageRepresentation() const {
  return m_delegate.imageDataForPath(m_path);
}

std::optional<FileError> ImageItem::extract(const std::string& destination) {
  return extractAndLog(destination).error;
}

ExtractOutcome ImageItem::extractAndLog(const std::string& destination) {
  // A fresh buffer for each photo costs nearly as much as copying the photo.
  thread_local Bytes buffer;
  ExtractOutcome outcome = extractPhoto(destination, buffer);
  if (outcome.error) {
    systemLog("failed (0) to extract the file: " + outcome.error->description());
  }
  if (buffer.capacity() > maximumKeptBufferInBytes) {
    buffer = {};
  }
  return outcome;
}

ExtractOutcome ImageItem::extractPhoto(const std::string& destination, Bytes& buffer) {
  if (!isFileName(fileName())) {
    return failure(FileError::invalidFileName(m_path));
  }
  std::optional<Bytes> contents = m_delegate.imageDataForPath(m_path, std::move(buffer));
  if (!contents) {
    return failure(FileError::unreadable(m_path));
  }
  buffer = std::move(*contents);
  return placePhoto(destination, buffer);
}

ExtractOutcome ImageItem::placePhoto(const std::string& destination, ByteView contents) {
  const std::string name = fileName();
  const FileNameReservation reservation(name);
  std::string temporary = joinPath(temporaryFolder(), name);
  std::optional<FileError> error = writeTemporaryFile(temporary, contents);
  if (joinPath(destination, name) != temporary) {
    // Without its temporary file the photo still arrives: the bytes are in hand.
    return copyPhoto({error ? std::string() : temporary, contents}, destination);
  }
  return error ? failure(*std::move(error)) : success(std::move(temporary), false, contents);
}

ExtractOutcome ImageItem::copyPhoto(const CopySource& source, const std::string& destination) {
  const std::uint64_t counter = m_fileNameExistsCounter;
  const std::string path = joinPath(destination, fileName());
  if (std::optional<FileError> error = m_fm.copyItemAtURLToURL(source, path)) {
    return failure(*std::move(error));
  }
  const bool renamed = m_fileNameExistsCounter != counter;
  std::string written = renamed ? joinPath(destination, numberedName()) : path;
  m_fileNameExistsCounter = 0;
  return success(std::move(written), renamed, source.contents);
}

std::string ImageItem::numberedName() const {
  return std::string(pathStem(m_path)) + " " + std::to_string(m_fileNameExistsCounter) + "." +
         imageFileType();
}

std::optional<bool> ImageItem::fileManagerShouldProceedAfterErrorCopyingItemAtURLToURL(
    FileManager& fileManager, FileError& error, const CopySource& source,
    const std::string& destination) {
  if (!error.isFileExists()) {
    return false;
  }
  ++m_fileNameExistsCounter;
  if (m_fileNameExistsCounter > maximumNumberedNames) {
    m_fileNameExistsCounter = 0;
    return false;
  }
  // The file manager asks again about a numbered name that is taken, too.
  const std::optional<FileError> numberedError =
      fileManager.copyItemAtURLToURL(source, joinPath(parentPath(destination), numberedName()));
  if (numberedError && !numberedError->isFileExists()) {
    error = *numberedError;  // a full disk is the news, not the name that was taken before
  }
  return !numberedError;
}

std::vector<std::string_view> ImageItem::writableTypesForPasteboard() const {
  std::vector<std::string_view> types{fileURLType};
  if (equalsIgnoringCase(imageFileType(), "jpg")) {
    types.push_back(jpegType);
  } else if (equalsIgnoringCase(imageFileType(), "png")) {
    types.push_back(pngType);
  }
  return types;
}

unsigned ImageItem::writingOptionsForTypePasteboard(std::string_view) const {
  return pasteboardWritingPromised;
}

std::optional<Bytes> ImageItem::pasteboardPropertyListForType(std::string_view type) {
  if (type == jpegType || type == pngType) {
    return imageRepresentation();
  }
  if (type != fileURLType) {
    return std::nullopt;
  }
  const ExtractOutcome outcome = extractAndLog(temporaryFolder());
  if (outcome.error) {
    return std::nullopt;
  }
  return Bytes::copyOf(bytesOf(fileURL(outcome.written) + "\r\n"));
}

}  // namespace snaplift
