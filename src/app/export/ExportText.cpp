#include "app/export/ExportText.h"

#include <QLocale>
#include <algorithm>

#include "backups/ImageItem.h"
#include "foundation/Log.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

// The photos whose failure is told in words; of 10,000, nobody reads more.
constexpr std::size_t toldPhotos = 5;
constexpr std::size_t toldBackups = 3;

QString plain(const std::string& text) {
  return QString::fromStdString(escapedForLog(text));
}

QString photosText(std::uint64_t count) {
  return count == 1 ? QStringLiteral("1 photo") : QStringLiteral("%1 photos").arg(count);
}

QString folderName(const std::string& folder) {
  const std::string_view name = lastPathComponent(folder);
  return plain(name.empty() ? folder : std::string(name));
}

QString reasonOf(const ExportedPhoto& failure) {
  return failure.error ? plain(failure.error->reason()) : QString();
}

// "what: this; that; and 2 more", as a sentence of its own; of no backups, nothing.
QString backupsText(const char* what, const std::vector<std::string>& backups) {
  if (backups.empty()) {
    return {};
  }
  QStringList names;
  for (std::size_t i = 0; i < std::min(toldBackups, backups.size()); ++i) {
    names << plain(backups[i]);
  }
  if (backups.size() > toldBackups) {
    names << QStringLiteral("and %1 more").arg(backups.size() - toldBackups);
  }
  return QStringLiteral(". %1: %2").arg(QLatin1String(what), names.join("; "));
}

}  // namespace

QString exportedText(const ExportReport& report) {
  const ExportSummary& summary = report.summary;
  QString text = QStringLiteral("%1 exported to %2")
                     .arg(photosText(summary.exported), folderName(report.destination));
  const auto add = [&text](std::uint64_t count, const char* what) {
    if (count > 0) {
      text += QStringLiteral(", %1 %2").arg(count).arg(QLatin1String(what));
    }
  };
  add(summary.skipped, "there already");
  add(summary.shortened, "of another length than the backup states");
  add(summary.failed, "failed");
  add(summary.notBegun, "not begun");
  return text + backupsText("Encrypted, so nothing was exported from", report.encrypted) +
         backupsText("Damaged, so photos may be missing", report.damaged);
}

std::vector<QStringList> failureRows(const ExportReport& report) {
  std::vector<QStringList> rows;
  for (const ExportedPhoto& failure : report.failures) {
    rows.push_back({plain(failure.photo->fileName()), reasonOf(failure)});
  }
  for (const std::string& backup : report.encrypted) {
    rows.push_back({plain(backup), "The backup is encrypted: nothing was exported from it"});
  }
  for (const std::string& backup : report.damaged) {
    rows.push_back({plain(backup), "The backup is damaged: photos may be missing"});
  }
  return rows;
}

AlertText littleRoomText(const std::string& destination, std::uint64_t needed, std::uint64_t free) {
  const auto size = [](std::uint64_t bytes) {
    return QLocale().formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeSIFormat);
  };
  return {QStringLiteral("“%1” Has Too Little Room").arg(folderName(destination)),
          QStringLiteral("The photos need %1, and %2 are free.").arg(size(needed), size(free))};
}

AlertText lostDestinationText(const ExportReport& report) {
  const ExportSummary& summary = report.summary;
  return {QStringLiteral("Nothing More Can Be Written to “%1”").arg(folderName(report.destination)),
          QStringLiteral("%1.\n\n%2 of %3 arrived; the backup is unchanged. Retry goes on with the "
                         "others.")
              .arg(plain(summary.lost->reason()))
              .arg(summary.exported + summary.skipped)
              .arg(photosText(summary.photos))};
}

AlertText unsafeExportText(const ExportReport& report) {
  return {"The Photos May Not Be Safe Yet",
          QStringLiteral("All photos were exported, but their disk does not confirm that it has "
                         "them (%1). Look at them before you give the backup away.")
              .arg(plain(report.summary.onFlush->reason()))};
}

AlertText unsavedReportText(const std::string& reason) {
  return {"The Report Could Not Be Saved", plain(reason)};
}

QString savedReportText(const std::string& file, bool isProven) {
  return QStringLiteral(". Report saved to %1%2")
      .arg(plain(file),
           isProven ? QString() : QStringLiteral(", but files that it names could not be read"));
}

AlertText failedCopyText(const std::vector<ExportedPhoto>& failures, std::size_t photos) {
  QString text("The backup is unchanged.\n");
  for (std::size_t i = 0; i < std::min(toldPhotos, failures.size()); ++i) {
    text +=
        QStringLiteral("\n%1: %2").arg(plain(failures[i].photo->fileName()), reasonOf(failures[i]));
  }
  if (failures.size() > toldPhotos) {
    text += QStringLiteral("\nand %1 more").arg(failures.size() - toldPhotos);
  }
  return {QStringLiteral("%1 of %2 Photos Could Not Be Copied").arg(failures.size()).arg(photos),
          text};
}

}  // namespace snaplift
