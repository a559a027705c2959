#include "app/export/PhotoExporter.h"

#include <QApplication>
#include <QMessageBox>
#include <utility>

#include "app/export/DesktopNotification.h"
#include "app/export/ExportNotice.h"
#include "app/export/ExportProgressBar.h"
#include "app/export/ExportText.h"
#include "backups/ImageItem.h"
#include "foundation/Log.h"
#include "foundation/files/OutputFolder.h"
#include "widgets/desktop/Alert.h"

namespace snaplift {
namespace {

void log(const ExportReport& report) {
  for (const ExportedPhoto& photo : report.failures) {
    systemLog("failed (0) to extract the file: " + photo.error->description());
  }
  if (report.summary.onFlush) {
    systemLog("failed to bring the exported photos to the disk: " +
              report.summary.onFlush->description());
  }
}

void tellWhoLooksElsewhere(const QString& text) {
  if (!QApplication::activeWindow()) {
    notifyDesktop(text);
  }
}

}  // namespace

PhotoExporter::PhotoExporter(QWidget& window, ExportProgressBar& progress, ExportNotice& notice)
    : m_window(window), m_progress(progress), m_notice(notice) {
  connect(&m_exports, &WindowExports::progressed, this, &PhotoExporter::showProgress);
  connect(&m_exports, &WindowExports::ended, this, &PhotoExporter::tellEnd);
  connect(&m_progress, &ExportProgressBar::stopWanted, this, &PhotoExporter::stop);
  connect(
      &m_notice, &ExportNotice::retryWanted, this,
      [this](const ExportReport& report, std::size_t photos) { m_exports.begin(report, photos); });
}

PhotoExporter::~PhotoExporter() = default;

void PhotoExporter::exportPhotos(ExportReport report) {
  m_notice.hide();
  m_exports.begin(
      std::move(report), WindowExports::allPhotos,
      [this](const ExportReport& next, std::uint64_t bytes, const std::function<void()>& goOn) {
        beginWhereThereIsRoom(next, bytes, goOn);
      });
}

void PhotoExporter::exportEverything(std::unique_ptr<EverythingToExport> everything,
                                     const std::string& destination, const ExportOptions& options) {
  m_everything = std::move(everything);
  m_notice.hide();
  connect(m_everything.get(), &EverythingToExport::progressed, this, &PhotoExporter::showProgress);
  connect(m_everything.get(), &EverythingToExport::collected, this,
          [this, destination, options](ExportReport photos) {
            m_everything.release()->deleteLater();  // it is speaking
            showProgress();
            photos.destination = destination;
            photos.options = options;
            exportPhotos(std::move(photos));
          });
  m_everything->start();
}

void PhotoExporter::beginWhereThereIsRoom(const ExportReport& report, std::uint64_t bytes,
                                          const std::function<void()>& begin) {
  // Of photos that may be there already nobody knows beforehand what they need.
  const std::uint64_t needed = report.options.skipsExisting ? 0 : bytes;
  const auto free = freeBytes(report.destination);
  if (free && needed > *free) {
    askQuestion(&m_window, littleRoomText(report.destination, needed, *free), tr("Export Anyway"),
                begin);
  } else {
    begin();
  }
}

void PhotoExporter::showProgress() {
  if (isExporting()) {
    m_progress.tell(m_exports.progress());
  } else if (isCollecting()) {
    m_progress.tellOfLoading(m_everything->loaded(), m_everything->backups());
  } else {
    m_progress.end();
  }
  if (!isExporting() && m_stopQuestion) {
    m_stopQuestion->close();
  }
  emit progressed();
}

void PhotoExporter::stop() {
  m_everything.reset();
  m_exports.stop();
  showProgress();
}

void PhotoExporter::tellEnd(const ExportReport& report) {
  log(report);
  if (report.summary.lost) {
    const AlertText text = lostDestinationText(report);
    askQuestion(
        &m_window, text, tr("Retry"), [this, report] { m_exports.begin(report); }, tr("Stop"),
        [this, report] { m_notice.tellOf(report); });
    tellWhoLooksElsewhere(text.messageText);
    return;
  }
  if (report.summary.onFlush) {
    showAlert(&m_window, unsafeExportText(report));
  }
  m_notice.tellOf(report);
  tellWhoLooksElsewhere(exportedText(report));
}

void PhotoExporter::askWhetherToStop(const std::function<void()>& stopped) {
  const AlertText text = {tr("Photos Are Still Being Exported"),
                          tr("If you stop now, the photos in hand are finished and the others stay "
                             "in the backup.")};
  m_stopQuestion = askQuestion(&m_window, text, tr("Stop and Quit"), [this, stopped] {
    stopAndWait();
    stopped();
  });
}

}  // namespace snaplift
