#include "app/export/ExportProgressBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>

namespace snaplift {
namespace {

constexpr int barSteps = 1000;

}  // namespace

ExportProgressBar::ExportProgressBar(QWidget* parent)
    : QWidget(parent), m_bar(new QProgressBar), m_text(new QLabel), m_stop(new QPushButton) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(12, 6, 12, 0);
  row->setSpacing(12);
  row->addWidget(m_bar, 1);
  row->addWidget(m_text);
  row->addWidget(m_stop);
  m_bar->setRange(0, barSteps);
  m_bar->setTextVisible(false);
  m_bar->setAccessibleName(tr("Export Progress"));
  m_text->setTextFormat(Qt::PlainText);
  m_stop->setAccessibleName(tr("Stop Exporting"));
  m_stop->setToolTip(tr("Finish the photos in hand and leave the others in the backup"));
  connect(m_stop, &QPushButton::clicked, this, [this] {
    m_stop->setEnabled(false);
    m_stop->setText(tr("Stopping..."));
    emit stopWanted();
  });
  hide();
}

void ExportProgressBar::begin() {
  m_rate = {};
  m_stop->setEnabled(true);
  m_stop->setText(tr("&Stop"));
}

void ExportProgressBar::show(double part, const QString& text) {
  m_bar->setValue(static_cast<int>(barSteps * part));
  m_text->setText(text);
  m_bar->setAccessibleDescription(text);
  QWidget::show();
}

void ExportProgressBar::tellOfLoading(std::size_t loaded, std::size_t backups) {
  if (isHidden()) {
    begin();
  }
  const double part =
      static_cast<double>(loaded) / static_cast<double>(std::max<std::size_t>(1, backups));
  show(part, tr("Loading backups, %1 of %2").arg(loaded).arg(backups));
}

void ExportProgressBar::tell(const ExportProgress& progress, TransferRate::Time now) {
  if (isHidden()) {
    begin();
  }
  if (m_countsBytes != (progress.bytes > 0)) {
    m_countsBytes = progress.bytes > 0;
    m_rate = {};
  }
  const std::uint64_t total = m_countsBytes ? progress.bytes : progress.photos;
  const std::uint64_t done = m_countsBytes ? progress.bytesEnded : progress.photosEnded;
  const double part =
      static_cast<double>(done) / static_cast<double>(std::max<std::uint64_t>(1, total));
  m_rate.update(now, done);
  QString text = tr("%1 of %2").arg(progress.photosEnded).arg(progress.photos);
  if (const auto rate = m_rate.perSecond(); rate && *rate > 0) {
    if (m_countsBytes) {
      text += QStringLiteral(", %1/s").arg(
          QLocale().formattedDataSize(static_cast<qint64>(*rate), 1, QLocale::DataSizeSIFormat));
    }
    text += ", " + timeLeftText(static_cast<double>(total - done) / *rate);
  }
  show(part, text);
}

}  // namespace snaplift
