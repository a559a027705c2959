#include "app/export/ExportNotice.h"

#include <QFile>
#include <QFileDialog>
#include <iterator>

#include "app/export/ExportText.h"
#include "app/export/NumberedTwins.h"
#include "app/words/CoreText.h"
#include "export/ExportDestination.h"
#include "export/ExportReportFile.h"
#include "foundation/files/Path.h"
#include "widgets/desktop/Alert.h"
#include "widgets/desktop/TableSheet.h"
#include "widgets/desktop/Workspace.h"

namespace snaplift {

void ExportNotice::tellOf(const ExportReport& report) {
  m_report = std::make_shared<const ExportReport>(report);
  m_offersSkipping = false;
  m_remark.clear();
  tellAgain();
  lookForTwins();
}

void ExportNotice::tellAgain() {
  QString text = exportedText(*m_report);
  if (m_offersSkipping) {
    text += ". " + tr("More than half of them were there already, with the same bytes");
  }
  tell(text + m_remark, actions());
}

std::vector<NoticeAction> ExportNotice::actions() {
  std::vector<NoticeAction> actions;
  if (m_report->summary.exported > 0) {
    actions.push_back({tr("Show"), [report = m_report] {
                         std::vector<std::string> files;
                         for (const ExportedPhoto& photo : report->arrived) {
                           if (!photo.isSkipped) {
                             files.push_back(photo.written);
                           }
                         }
                         showFilesInFileManager(report->destination, files);
                       }});
  }
  if (!failureRows(*m_report).empty()) {
    actions.push_back({tr("Details..."), [this] { showDetails(); }, false});
  }
  if (!m_report->failures.empty()) {
    actions.push_back({tr("Retry Failed"), [this] { retry(); }});
  }
  if (m_offersSkipping) {
    actions.push_back({tr("Skip Them From Now On"), [this] { emit skippingWanted(); }});
  }
  actions.push_back({tr("Save Report..."), [this] { chooseReportFile(); }, false});
  return actions;
}

void ExportNotice::showDetails() {
  std::vector<AlertChoice> choices;
  if (!m_report->failures.empty()) {
    choices.push_back({tr("Retry Failed"), [this] {
                         hide();
                         retry();
                       }});
  }
  choices.push_back({tr("Save Report..."), [this] { chooseReportFile(); }});
  showTable(window(), tr("Photos That Were Not Exported"), {tr("Photo"), tr("Reason")},
            failureRows(*m_report), choices);
}

// Where the destination was lost, the others were not begun because of the one that failed.
void ExportNotice::retry() {
  const bool wasLost = m_report->summary.lost.has_value();
  emit retryWanted(*m_report, wasLost ? WindowExports::allPhotos : m_report->failures.size());
}

void ExportNotice::lookForTwins() {
  if (m_report->options.skipsExisting ||
      2 * m_report->summary.renamed <= m_report->arrived.size()) {
    return;
  }
  inBackground([this, report = m_report](const std::stop_token& stop) {
    const bool areTwins = areMostlyTwins(report->arrived, stop);
    return [this, report, areTwins] {
      if (areTwins && report == m_report && !isHidden()) {
        m_offersSkipping = true;
        tellAgain();
      }
    };
  });
}

void ExportNotice::chooseReportFile() {
  auto* dialog =
      new QFileDialog(window(), tr("Save Report"), QFile::decodeName(m_report->destination.c_str()),
                      tr("Comma-Separated Values (*.csv)"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix("csv");
  dialog->selectFile(tr("Snaplift Report.csv"));
  connect(dialog, &QFileDialog::fileSelected, this,
          [this](const QString& file) { saveReport(QFile::encodeName(file).toStdString()); });
  dialog->open();
}

void ExportNotice::saveReport(const std::string& file) {
  if (const auto problem = reportFileProblem(file, m_backupFolders())) {
    showAlert(window(), unsavedReportText(coreText(*problem)));
    return;
  }
  m_remark = ". " + tr("Saving the report...");
  tellAgain();
  inBackground([this, report = m_report, file](const std::stop_token& stop) {
    std::vector<PhotoToExport> photos;
    for (const ExportedPhoto& photo : report->arrived) {
      photos.push_back({photo.photo});
    }
    photos.insert(photos.end(), report->missing.begin(), report->missing.end());
    std::vector<ExportedPhoto> ended = report->arrived;
    ended.insert(ended.end(), report->failures.begin(), report->failures.end());
    const auto lines = reportOf(photos, ended, stop);
    const auto error =
        stop.stop_requested() ? std::nullopt : writeReport(file, lines, ReportPlace::MayBeReplaced);
    return [this, report, file, error, isProven = !hasUnprovenFile(lines)] {
      if (error) {
        showAlert(window(), unsavedReportText(coreText(*error)));
      }
      if (report == m_report) {
        m_remark = error ? QString() : savedReportText(file, isProven);
        if (!isHidden()) {
          tellAgain();
        }
      }
    };
  });
}

void ExportNotice::inBackground(const Work& work) {
  const auto place = m_threads.emplace(m_threads.end());
  *place = std::jthread([this, place, work](const std::stop_token& stop) {
    const auto then = work(stop);
    QMetaObject::invokeMethod(
        this,
        [this, place, then] {
          m_threads.erase(place);
          then();
        },
        Qt::QueuedConnection);
  });
}

}  // namespace snaplift
