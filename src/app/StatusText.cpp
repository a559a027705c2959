#include "app/StatusText.h"

#include <QCoreApplication>
#include <QStringList>

#include "foundation/Log.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

struct Words {
  Q_DECLARE_TR_FUNCTIONS(StatusText)
};

}  // namespace

QString photoCountText(int photos, int selected) {
  if (photos == 0) {
    return Words::tr("No Photos");
  }
  if (selected > 0) {
    return Words::tr("%1 of %n Photos Selected", nullptr, photos).arg(selected);
  }
  return photos == 1 ? Words::tr("1 Photo") : Words::tr("%n Photos", nullptr, photos);
}

QString hiddenMediaText(const OtherMedia& others) {
  const int films = static_cast<int>(others.films), pictures = static_cast<int>(others.pictures);
  const QString filmsText =
      films == 1 ? Words::tr("1 film") : Words::tr("%n films", nullptr, films);
  const QString picturesText = pictures == 1 ? Words::tr("1 other picture")
                                             : Words::tr("%n other pictures", nullptr, pictures);
  if (films > 0 && pictures > 0) {
    return Words::tr("%1 and %2 are not shown").arg(filmsText, picturesText);
  }
  const int count = films + pictures;
  return (count == 1 ? Words::tr("%1 is not shown") : Words::tr("%1 are not shown", nullptr, count))
      .arg(films > 0 ? filmsText : picturesText);
}

QString shownCountText(int shown, int all) {
  return shown == all
             ? QString()
             : QCoreApplication::translate("StatusText", "Showing %L1 of %L2").arg(shown).arg(all);
}

QString exportProgressText(int remaining) {
  return Words::tr("Exporting: %n Photos Remaining", nullptr, remaining);
}

QString backupDescription(BackupModel& backup) {
  QStringList lines = {
      QString::fromStdString(longDateText(backup.date()) + ", " + timeOfDayText(backup.date()))};
  if (backup.productVersion()) {
    lines << Words::tr("System version %1")
                 .arg(QString::fromStdString(escapedForLog(*backup.productVersion())));
  }
  lines << QString::fromStdString(escapedForLog(backup.path()));
  if (backup.wasLeftUnfinished()) {
    lines << Words::tr("Not finished by the device's backup");
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
