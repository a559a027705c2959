#include "app/PhotoPasteboard.h"

#include <string>

#include "foundation/files/FileURL.h"

namespace snaplift {
namespace {

// What file managers put beside the list of URLs, so that a paste knows that it copies.
constexpr const char* copiedFilesType = "x-special/gnome-copied-files";

QString formatName(std::string_view type) {
  return QString::fromUtf8(type.data(), static_cast<qsizetype>(type.size()));
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
  const bool isList = format == formatName(fileURLType);
  if (!isList && format != copiedFilesType) {
    return picture(format);
  }
  // This object may be gone when the files are there.
  const std::shared_ptr<TemporaryPhotos> files = m_files;
  files->write();
  if (isList) {
    return QByteArray::fromStdString(uriList(files->paths()));
  }
  std::string list = "copy";
  for (const std::string& path : files->paths()) {
    list += "\n" + fileURL(path);
  }
  return QByteArray::fromStdString(list);
}

QByteArray PhotoPasteboard::picture(const QString& format) const {
  ImageItem& photo = *m_photos.front();
  if (const auto bytes = photo.pasteboardPropertyListForType(format.toStdString())) {
    return {reinterpret_cast<const char*>(bytes->data()), static_cast<qsizetype>(bytes->size())};
  }
  if (m_failed) {
    ExportedPhoto failure;
    failure.photo = &photo;
    failure.error = photo.readingError();
    m_failed({failure});
  }
  return {};
}

}  // namespace snaplift
