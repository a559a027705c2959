#pragma once

#include <QWidget>

#include "app/export/WindowExports.h"
#include "widgets/desktop/TransferRate.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace snaplift {

// How far the exports are: a bar, "412 of 1000, 12.4 MB/s, about 3 minutes left" and a button that
// stops them. Hidden while nothing is exported.
class ExportProgressBar : public QWidget {
  Q_OBJECT

public:
  explicit ExportProgressBar(QWidget* parent = nullptr);

  // By bytes where the photos' sizes are known, else by photos.
  void tell(const ExportProgress& progress,
            TransferRate::Time now = std::chrono::steady_clock::now());
  // Before: the backups are loaded whose photos are to be exported.
  void tellOfLoading(std::size_t loaded, std::size_t backups);
  void end() { hide(); }

signals:
  void stopWanted();

private:
  void begin();
  void show(double part, const QString& text);

  QProgressBar* m_bar;
  QLabel* m_text;
  QPushButton* m_stop;
  TransferRate m_rate;
  bool m_countsBytes = false;
};

}  // namespace snaplift
