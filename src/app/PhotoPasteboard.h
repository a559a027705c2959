#pragma once

#include <QMimeData>
#include <memory>
#include <vector>

#include "app/TemporaryPhotos.h"
#include "backups/ImageItem.h"

namespace snaplift {

// Photos on the pasteboard, promised: only the names of the types are there until a receiver asks
// for one, and only then is a photo read. As files the photos are put into the temporary folder,
// once; one photo alone is also offered as a picture. The photos are not owned; their backups
// outlive the pasteboard, which is emptied when the application quits. The photos that could not be
// read or written when somebody asked are told, once.
class PhotoPasteboard : public QMimeData {
  Q_OBJECT

public:
  explicit PhotoPasteboard(std::vector<ImageItem*> photos, TemporaryPhotos::Failed failed = {})
      : m_photos(std::move(photos)),
        m_failed(failed),
        m_files(std::make_shared<TemporaryPhotos>(m_photos, std::move(failed))) {}

  QStringList formats() const override;
  bool hasFormat(const QString& format) const override { return formats().contains(format); }

protected:
  QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
  QByteArray picture(const QString& format) const;

  const std::vector<ImageItem*> m_photos;
  const TemporaryPhotos::Failed m_failed;
  const std::shared_ptr<TemporaryPhotos> m_files;
};

}  // namespace snaplift
