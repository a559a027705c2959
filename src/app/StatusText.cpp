#include "app/StatusText.h"

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

}  // namespace snaplift
