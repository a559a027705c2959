#pragma once

#include <QMimeData>
#include <vector>

#include "library/ImageItem.h"

namespace snaplift {

// Photos on the pasteboard, promised: only the names of the types are there until a receiver asks
// for one, and only then is a photo read. As files every photo is first put into the temporary
// folder; one photo alone is also offered as a picture. The photos are not owned; their backups
// outlive the pasteboard, which is emptied when the application quits.
class PhotoPasteboard : public QMimeData {
  Q_OBJECT

public:
  explicit PhotoPasteboard(std::vector<ImageItem*> photos) : m_photos(std::move(photos)) {}

  QStringList formats() const override;
  bool hasFormat(const QString& format) const override { return formats().contains(format); }

protected:
  QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
  // The list of file URLs, one a line as the uri-list has them; photos that cannot be read are
  // left out.
  QByteArray fileURLs() const;

  const std::vector<ImageItem*> m_photos;
};

}  // namespace snaplift
