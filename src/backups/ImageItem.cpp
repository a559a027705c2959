#include "backups/ImageItem.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <unistd.h>

#include "formats/FilmLength.h"
#include "foundation/Log.h"
#include "foundation/files/File.h"
#include "foundation/files/FileURL.h"
#include "foundation/files/InputFile.h"
#include "foundation/files/NewFile.h"
#include "foundation/files/NumberedName.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"
#include "foundation/files/TemporaryFolder.h"

namespace snaplift {
namespace {

// The largest buffer that a thread keeps between two photos; those of old handsets have a few
// megabytes.
constexpr std::size_t maximumKeptBufferInBytes = std::size_t{32} << 20;

// Names in the temporary folder belong to the last photo that was put there. Who else puts one
// there at the same time may take the name again.
std::optional<FileError> publishReplacing(NewFile& file) {
  constexpr int attempts = 100;
  std::optional<FileError> error;
  for (int i = 0; i < attempts; ++i) {
    ::unlink(joinPath(temporaryFolder(), file.name()).c_str());
    error = file.publish(file.name());
    if (!error || !error->isFileExists()) {
      break;
    }
  }
  return error;
}

}  // namespace

ImageItem::ImageItem(std::string path, const ImageDataSource& delegate, std::size_t index)
    : m_path(std::move(path)), m_delegate(delegate), m_index(index) {}

PhotoInfo ImageItem::info() const {
  const std::optional<PhotoInfo> info = m_delegate.photoInfo(m_index);
  return info ? *info : PhotoInfo::ofPath(m_path);
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

std::optional<Bytes> ImageItem::imageBeginning(std::size_t size) const {
  const std::string path = m_delegate.contentFileForPath(m_path);
  if (!path.empty()) {
    return readBeginning(path, size);
  }
  std::optional<Bytes> contents = imageRepresentation();
  if (contents) {
    contents->resize(std::min(contents->size(), size));
  }
  return contents;
}

std::optional<std::chrono::milliseconds> ImageItem::filmLength() const {
  return lengthOfFilm(m_delegate.contentFileForPath(m_path));
}

std::optional<FileError> ImageItem::read(const FileReader& readFile,
                                         const BytesReader& readBytes) const {
  if (m_delegate.encrypted()) {
    return FileError::encrypted(m_path);
  }
  const std::string path = m_delegate.contentFileForPath(m_path);
  if (!path.empty()) {
    InputFile content(path);
    std::optional<FileError> error = content ? readFile(content) : content.error();
    if (error && error->path == path) {
      error->path = m_path;  // the photo's own name says more than that of its content file
    }
    return error;
  }
  // A fresh buffer for each photo costs nearly as much as copying the photo.
  thread_local Bytes buffer;
  std::optional<Bytes> contents = m_delegate.imageDataForPath(m_path, std::move(buffer));
  if (!contents) {
    return FileError::unreadable(m_path);
  }
  buffer = std::move(*contents);
  std::optional<FileError> error = readBytes(buffer);
  if (buffer.capacity() > maximumKeptBufferInBytes) {
    buffer = {};
  }
  return error;
}

std::optional<FileError> ImageItem::writeInto(NewFile& file) const {
  return read([&file](InputFile& content) { return file.copy(content); },
              [&file](ByteView contents) { return file.write(contents); });
}

std::optional<FileError> ImageItem::readingError() const {
  return read(
      [](InputFile& content) {
        return content.isWhole() ? std::nullopt : std::optional(content.error());
      },
      [](ByteView) { return std::nullopt; });
}

bool ImageItem::isHeldBy(InputFile& file) const {
  bool isHeld = false;
  const auto error = read(
      [&](const InputFile& content) {
        isHeld = content.hasBytesOf(file);
        return std::nullopt;
      },
      [&](ByteView contents) {
        isHeld = file.holds(contents);
        return std::nullopt;
      });
  return !error && isHeld;
}

bool ImageItem::hasBytesOf(const ImageItem& other) const {
  const std::string path = m_delegate.contentFileForPath(m_path);
  if (!path.empty()) {
    InputFile content(path);
    return content && other.isHeldBy(content);
  }
  const std::optional<Bytes> own = imageRepresentation();
  const std::optional<Bytes> others = other.imageRepresentation();
  return own && others && std::ranges::equal(own->view(), others->view());
}

std::optional<FileError> ImageItem::extract(const std::string& destination) {
  std::string written;
  return extractAndLog(destination, written);
}

std::optional<FileError> ImageItem::extractAndLog(const std::string& destination,
                                                  std::string& written) {
  std::optional<FileError> error = extractInto(destination, written);
  if (error) {
    systemLog("failed (0) to extract the file: " + error->description());
  }
  return error;
}

std::optional<FileError> ImageItem::extractInto(const std::string& destination,
                                                std::string& written) {
  const std::string name = fileName();
  if (!isFileName(name)) {
    return FileError::invalidFileName(m_path);
  }
  const OutputFolder folder(destination);
  NewFile file(folder, name);
  std::optional<FileError> error = file.error();
  if (!error) {
    error = writeInto(file);
  }
  if (!error) {
    error = file.seal();
  }
  if (!error) {
    const bool isTemporary = joinPath(destination, name) == joinPath(temporaryFolder(), name);
    error = isTemporary ? publishReplacing(file) : publishNumbered(file, m_fileNameExistsCounter);
  }
  written = joinPath(destination, file.name());
  return error;
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
  if (m_delegate.encrypted()) {
    return std::nullopt;
  }
  if (type == jpegType || type == pngType) {
    return imageRepresentation();
  }
  if (type != fileURLType) {
    return std::nullopt;
  }
  std::string written;
  if (temporaryFolder().empty() || extractAndLog(temporaryFolder(), written)) {
    return std::nullopt;
  }
  return Bytes::copyOf(bytesOf(uriList({written})));
}

}  // namespace snaplift
