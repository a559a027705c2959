#include "app/export/ExportText.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>

#include "app/words/CoreText.h"
#include "backups/ImageItem.h"
#include "foundation/Log.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

struct Words {
  Q_DECLARE_TR_FUNCTIONS(ExportText)
};

// The photos whose failure is told in words; of 10,000, nobody reads more.
constexpr std::size_t toldPhotos = 5;
constexpr std::size_t toldBackups = 3;

QString plain(const std::string& text) {
  return QString::fromStdString(escapedForLog(text));
}

QString photosText(std::uint64_t count) {
  return count == 1 ? Words::tr("1 photo")
                    : Words::tr("%n photos", nullptr, static_cast<int>(count));
}

QString filmsText(std::uint64_t count) {
  return count == 1 ? Words::tr("1 film") : Words::tr("%n films", nullptr, static_cast<int>(count));
}

// "5 photos", "1 photo and 2 films".
QString exportedCountText(const ExportSummary& summary) {
  const std::uint64_t photos = summary.exported - summary.films;
  return summary.films == 0 ? photosText(photos)
         : photos == 0      ? filmsText(summary.films)
                            : Words::tr("%1 and %2", "photos and films")
                             .arg(photosText(photos), filmsText(summary.films));
}

QString folderName(const std::string& folder) {
  const std::string_view name = lastPathComponent(folder);
  return plain(name.empty() ? folder : std::string(name));
}

QString reasonOf(const ExportedPhoto& failure) {
  return failure.error ? coreText(*failure.error) : QString();
}

QString andMoreText(std::size_t count) {
  return Words::tr("and %n more", nullptr, static_cast<int>(count));
}

// "what: this; that; and 2 more", as a sentence of its own; of no backups, nothing.
QString backupsText(const QString& what, const std::vector<std::string>& backups) {
  if (backups.empty()) {
    return {};
  }
  QStringList names;
  for (std::size_t i = 0; i < std::min(toldBackups, backups.size()); ++i) {
    names << plain(backups[i]);
  }
  if (backups.size() > toldBackups) {
    names << andMoreText(backups.size() - toldBackups);
  }
  return ". " + what + ": " + names.join("; ");
}

}  // namespace

QString exportedText(const ExportReport& report) {
  const ExportSummary& summary = report.summary;
  QString text = Words::tr("%1 exported to %2")
                     .arg(exportedCountText(summary), folderName(report.destination));
  const auto add = [&text](std::uint64_t count, const char* what) {
    if (count > 0) {
      text += ", " + Words::tr(what, nullptr, static_cast<int>(count));
    }
  };
  add(summary.skipped, QT_TRANSLATE_N_NOOP("ExportText", "%n there already"));
  add(summary.shortened,
      QT_TRANSLATE_N_NOOP("ExportText", "%n of another length than the backup states"));
  add(summary.failed, QT_TRANSLATE_N_NOOP("ExportText", "%n failed"));
  add(summary.notBegun, QT_TRANSLATE_N_NOOP("ExportText", "%n not begun"));
  return text +
         backupsText(Words::tr("Encrypted, so nothing was exported from"), report.encrypted) +
         backupsText(Words::tr("Damaged, so photos may be missing"), report.damaged);
}

std::vector<QStringList> failureRows(const ExportReport& report) {
  std::vector<QStringList> rows;
  for (const ExportedPhoto& failure : report.failures) {
    rows.push_back({plain(failure.photo->fileName()), reasonOf(failure)});
  }
  for (const std::string& backup : report.encrypted) {
    rows.push_back(
        {plain(backup), Words::tr("The backup is encrypted: nothing was exported from it")});
  }
  for (const std::string& backup : report.damaged) {
    rows.push_back({plain(backup), Words::tr("The backup is damaged: photos may be missing")});
  }
  return rows;
}

AlertText littleRoomText(const std::string& destination, std::uint64_t needed, std::uint64_t free) {
  const auto size = [](std::uint64_t bytes) {
    return QLocale().formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeSIFormat);
  };
  return {Words::tr("“%1” Has Too Little Room").arg(folderName(destination)),
          Words::tr("The photos need %1, and %2 are free.").arg(size(needed), size(free))};
}

AlertText lostDestinationText(const ExportReport& report) {
  const ExportSummary& summary = report.summary;
  return {Words::tr("Nothing More Can Be Written to “%1”").arg(folderName(report.destination)),
          coreText(*summary.lost) + ".\n\n" +
              Words::tr("%1 of %2 arrived; the backup is unchanged. Retry goes on with the others.")
                  .arg(summary.exported + summary.skipped)
                  .arg(photosText(summary.photos))};
}

AlertText unsafeExportText(const ExportReport& report) {
  return {Words::tr("The Photos May Not Be Safe Yet"),
          Words::tr("All photos were exported, but their disk does not confirm that it has them "
                    "(%1). Look at them before you give the backup away.")
              .arg(coreText(*report.summary.onFlush))};
}

AlertText unsavedReportText(const QString& reason) {
  return {Words::tr("The Report Could Not Be Saved"), reason};
}

QString savedReportText(const std::string& file, bool isProven) {
  return ". " + (isProven ? Words::tr("Report saved to %1")
                          : Words::tr("Report saved to %1, but files that it names could not be "
                                      "read"))
                    .arg(plain(file));
}

AlertText failedCopyText(const std::vector<ExportedPhoto>& failures, std::size_t photos) {
  QString text = Words::tr("The backup is unchanged.") + "\n";
  for (std::size_t i = 0; i < std::min(toldPhotos, failures.size()); ++i) {
    text += "\n" + plain(failures[i].photo->fileName()) + ": " + reasonOf(failures[i]);
  }
  if (failures.size() > toldPhotos) {
    text += "\n" + andMoreText(failures.size() - toldPhotos);
  }
  return {Words::tr("%1 of %n Photos Could Not Be Copied", nullptr, static_cast<int>(photos))
              .arg(failures.size()),
          text};
}

}  // namespace snaplift
