#pragma once

#include <QString>
#include <functional>
#include <list>
#include <memory>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "app/export/WindowExports.h"
#include "widgets/desktop/NoticeBar.h"

namespace snaplift {

// The notice over the photos of an export that is over: what arrived, and with Details what did not
// and why; from there the photos can be shown, the failed ones tried again, and a report saved.
// Where most photos were there already it says so, as soon as a look at the files has told.
//
// The photos outlive the object, whose end stops what it does in the background.
class ExportNotice : public NoticeBar {
  Q_OBJECT

public:
  explicit ExportNotice(QWidget* parent = nullptr) : NoticeBar(parent) {}

  void tellOf(const ExportReport& report);

  // The folders of the backups, into which no report is saved.
  using BackupFolders = std::function<std::vector<std::string>()>;
  void setBackupFolders(BackupFolders folders) { m_backupFolders = std::move(folders); }

signals:
  // The first so many that are missing are to be tried again.
  void retryWanted(const ExportReport& report, std::size_t photos);
  // Photos that are already there are to be skipped from now on.
  void skippingWanted();

private:
  void tellAgain();
  std::vector<NoticeAction> actions();
  void showDetails();
  void retry();
  void lookForTwins();
  void chooseReportFile();
  void saveReport(const std::string& file);

  // What is to be done on a thread; its answer is then done on the user interface's.
  using Work = std::function<std::function<void()>(const std::stop_token& stop)>;
  void inBackground(const Work& work);

  std::shared_ptr<const ExportReport> m_report;
  bool m_offersSkipping = false;
  QString m_remark;  // on the report's file
  BackupFolders m_backupFolders;
  std::list<std::jthread> m_threads;
};

}  // namespace snaplift
