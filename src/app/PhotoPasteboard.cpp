#include "app/PhotoPasteboard.h"

#include <QDir>
#include <QFile>
#include <cerrno>
#include <map>
#include <string>

#include "foundation/FileURL.h"
#include "foundation/FileWriting.h"
#include "foundation/Log.h"
#include "foundation/Path.h"
#include "foundation/TemporaryFolder.h"

namespace snaplift {
namespace {

// What file managers put beside the list of URLs, so that a paste knows that it copies.
constexpr const char* copiedFilesType = "x-special/gnome-copied-files";

QString formatName(std::string_view type) {
  return QString::fromUtf8(type.data(), static_cast<qsizetype>(type.size()));
}

QByteArray bytesFor(const std::optional<Bytes>& bytes) {
  return bytes ? QByteArray(reinterpret_cast<const char*>(bytes->data()),
                            static_cast<qsizetype>(bytes->size()))
               : QByteArray();
}

// Not by an extraction, which would put the bytes under the photo's name into the temporary folder
// first, where its namesake waits for its receiver.
std::optional<FileError> writePhoto(const ImageItem& photo, const std::string& path) {
  if (temporaryFolder().empty()) {
    return FileError::ofSystem(ENOENT, path);
  }
  if (!isFileName(photo.fileName())) {
    return FileError::invalidFileName(photo.path());
  }
  QDir().mkpath(QFile::decodeName(std::string(parentPath(path)).c_str()));
  const std::optional<Bytes> contents = photo.imageRepresentation();
  return contents ? writeFile(path, *contents) : FileError::unreadable(photo.path());
}

// The temporary folder holds one photo of a name; another of the same name, from another folder of
// the device, gets a folder of its own below it.
QByteArray urlOfNamesake(const ImageItem& photo, int number) {
  const std::string folder = joinPath(temporaryFolder(), std::to_string(number));
  const std::string path = joinPath(folder, photo.fileName());
  if (const auto error = writePhoto(photo, path)) {
    systemLog("failed (0) to extract the file: " + error->description());
    return {};
  }
  return QByteArray::fromStdString(fileURL(path) + "\r\n");
}

}  // namespace

QStringList PhotoPasteboard::formats() const {
  QStringList names = {formatName(fileURLType), copiedFilesType};
  if (m_photos.size() == 1) {
    for (const std::string_view type : m_photos.front()->writableTypesForPasteboard()) {
      if (type != fileURLType) {
        names << formatName(type);
      }
    }
  }
  return names;
}

QVariant PhotoPasteboard::retrieveData(const QString& format, QMetaType) const {
  if (!hasFormat(format)) {
    return {};
  }
  if (format == formatName(fileURLType)) {
    return fileURLs();
  }
  if (format == copiedFilesType) {
    return QByteArray("copy\n" + fileURLs().replace("\r\n", "\n").trimmed());
  }
  return bytesFor(m_photos.front()->pasteboardPropertyListForType(format.toStdString()));
}

QByteArray PhotoPasteboard::fileURLs() const {
  QByteArray urls;
  std::map<std::string, int> photosOfName;
  for (ImageItem* photo : m_photos) {
    const int namesake = photosOfName[photo->fileName()]++;
    urls += namesake == 0 ? bytesFor(photo->pasteboardPropertyListForType(fileURLType))
                          : urlOfNamesake(*photo, namesake);
  }
  return urls;
}

}  // namespace snaplift
