#include "app/StatusText.h"

#include <QStringList>

#include "foundation/Log.h"
#include "foundation/files/Path.h"

namespace snaplift {

QString photoCountText(int photos, int selected) {
  if (photos == 0) {
    return QStringLiteral("No Photos");
  }
  if (selected > 0) {
    return QStringLiteral("%1 of %2 Photos Selected").arg(selected).arg(photos);
  }
  return photos == 1 ? QStringLiteral("1 Photo") : QStringLiteral("%1 Photos").arg(photos);
}

QString exportProgressText(int remaining) {
  return QStringLiteral("Exporting: %1 Photos Remaining").arg(remaining);
}

QString backupDescription(BackupModel& backup) {
  QStringList lines = {
      QString::fromStdString(longDateText(backup.date()) + ", " + timeOfDayText(backup.date()))};
  if (backup.productVersion()) {
    lines << "System version " + QString::fromStdString(escapedForLog(*backup.productVersion()));
  }
  lines << QString::fromStdString(escapedForLog(backup.path()));
  if (backup.wasLeftUnfinished()) {
    lines << "Not finished by the device's backup";
  }
  if (backup.contentReady()) {
    lines << photoCountText(static_cast<int>(backup.imageItems().size()), 0);
  }
  return lines.join('\n');
}

QString folderTitle(const std::string& folder) {
  const std::string_view name = lastPathComponent(folder);
  return QString::fromStdString(escapedForLog(name.empty() ? folder : name));
}

}  // namespace snaplift
