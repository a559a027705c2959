// The main area in step with the backup that is loading or loaded: message pane, photo browser,
// status text and zoom.

#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QSlider>
#include <QStackedWidget>
#include <cmath>
#include <utility>

#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "ui_MainWindow.h"
#include "widgets/desktop/Alert.h"
#include "widgets/desktop/MainThread.h"
#include "widgets/desktop/NoticeBar.h"
#include "widgets/desktop/Workspace.h"

namespace snaplift {
namespace {

// The slider counts percents of the largest size; a key moves it by as much as one sees.
constexpr double sliderStepsPerZoom = 100;
constexpr double zoomOfKey = 0.05;

// The start-up size, as a zoom back to it ends: a float, widened.
constexpr double zoomOutTarget = SLAppDelegate::startZoom;

QString zoomText(int percent) {
  return SLAppDelegate::tr("Pictures at %1 percent of their largest size").arg(percent);
}

}  // namespace

void SLAppDelegate::connectZoom() {
  QSlider* slider = m_ui->zoomSlider;
  const auto step = [](double zoom) {
    return static_cast<int>(std::lround(zoom * sliderStepsPerZoom));
  };
  slider->setRange(step(ImageBrowserView::smallestZoom), step(maxZoom()));
  slider->setSingleStep(step(zoomOfKey));
  slider->setPageStep(step(4 * zoomOfKey));
  connect(slider, &QSlider::valueChanged, this,
          [this](int value) { setZoomLevel(static_cast<float>(value / sliderStepsPerZoom)); });
  connect(this, &SLAppDelegate::zoomLevelChanged, slider, [slider, step](float zoom) {
    // Silently: a pinch may zoom beyond the slider's end, which must not pull the zoom back.
    const QSignalBlocker blocker(slider);
    slider->setValue(step(zoom));
    slider->setToolTip(zoomText(step(zoom)));
    slider->setAccessibleDescription(zoomText(step(zoom)));
  });
  connect(this, &SLAppDelegate::zoomLevelChanged, m_ui->browser, &ImageBrowserView::setZoomValue);
  connect(m_ui->browser, &ImageBrowserView::zoomValueChanged, this, &SLAppDelegate::setZoomLevel);
  emit zoomLevelChanged(m_zoomLevel);
}

void SLAppDelegate::setZoomLevel(float zoomLevel) {
  if (zoomLevel != m_zoomLevel) {
    m_zoomLevel = zoomLevel;
    emit zoomLevelChanged(zoomLevel);
  }
}

bool SLAppDelegate::hasSelection() const {
  return !m_ui->browser->selectionIndexes().empty();
}

void SLAppDelegate::didStartLoading(BackupModel* backup) {
  const auto say = [this, backup] {
    if (backup == selectedBackup()) {
      m_ui->text->setText(tr("Loading..."));
    }
    m_ui->sourceList->reloadItem(backup);  // its wheel turns, whoever has it load
    suspectIfItLoadsLong(backup->path());
  };
  QMetaObject::invokeMethod(this, say, Qt::QueuedConnection);
}

void SLAppDelegate::finishedLoading(BackupModel* backup) {
  mainThread::runAndWait([this, backup] { showContentOf(backup); });
}

void SLAppDelegate::showContentOf(BackupModel* backup) {
  if (backup != selectedBackup()) {
    return;
  }
  backup->setWantsOtherMedia(m_ui->actionOtherMedia->isChecked());
  m_arrayController.setContent(backup);
  m_ui->browser->reloadData();
  m_finder->contentDidChange();
  tellOfOtherMedia(*backup);
  if (backup->imageItems().empty() && !backup->encryptsList()) {
    showMessage(tr("No Photos Found in This Backup"));
  } else if (backup->encrypted()) {
    showMessage(tr("Backup is Encrypted"));
    updateCentreText();
    sayThatItIsEncrypted([this, backup] { didShowContentOf(backup); });
    return;
  } else {
    m_ui->text->setText(tr("Loading..."));
    showPhotos();
  }
  didShowContentOf(backup);
}

void SLAppDelegate::didShowContentOf(BackupModel* backup) {
  updateCentreText();
  updateMenuItem();
  updateCommands();
  m_ui->sourceList->reloadItem(backup);
  // Once for each backup, however often it is selected. And not before somebody has looked at its
  // disk, which may be all that is wrong.
  if (!backup->isComplete() && m_toldOfDamage.insert(backup->path()).second) {
    m_damagedBackups.insert(backup->path());
    m_disks->suspect(backup->path());
  }
}

void SLAppDelegate::sayThatItIsEncrypted(std::function<void()> dismissed) {
  const AlertText text = {
      tr("This Backup is Encrypted"),
      tr("Snaplift cannot recover photos from this backup because it is encrypted.  You must use "
         "iTunes to restore them to an iOS device.")};
  showAlert(m_window.get(), text, std::move(dismissed));
}

void SLAppDelegate::tellOfDamage() {
  showAlert(m_window.get(), {tr("This Backup is Damaged"),
                             tr("Snaplift shows every photo that it could find, but some of the "
                                "files that list the photos cannot be read. Photos may be "
                                "missing.")});
}

void SLAppDelegate::tellOfOtherMedia(BackupModel& backup) {
  const OtherMedia others = backup.otherMedia();
  if (others.isEmpty() || backup.encrypted() || m_ui->actionOtherMedia->isChecked()) {
    m_ui->mediaNotice->hide();
    return;
  }
  m_ui->mediaNotice->tell(
      hiddenMediaText(others),
      {{tr("Show Them"), [this] { m_ui->actionOtherMedia->setChecked(true); }}});
}

void SLAppDelegate::showOtherMedia(bool shows) {
  m_state.setShowsOtherMedia(shows);
  BackupModel* backup = m_arrayController.content();
  if (backup && !backup->encrypted()) {
    showContentOf(backup);
  }
}

void SLAppDelegate::imageBrowserOpenItemAtIndex(ImageBrowserView&, int index) {
  PhotosToExport films = m_arrayController.photosAtIndexes({index});
  if (films.empty()) {
    return;
  }
  films.erase(films.begin(), films.end() - 1);  // of a live photo, its film
  m_openedFilm = std::make_shared<TemporaryPhotos>(films, tellingFailedCopy(films.size()));
  const auto copy = m_openedFilm;  // who waits here may be asked again
  copy->write();
  for (const std::string& path : copy->paths()) {
    if (!openFileInItsProgram(path)) {
      showAlert(m_window.get(), {tr("This Film Cannot Be Opened"),
                                 tr("The desktop has no program that opens films of this kind.")});
    }
  }
}

void SLAppDelegate::showMessage(const QString& message) {
  m_ui->text->setText(message);
  m_ui->contentArea->setCurrentWidget(m_ui->textView);
}

void SLAppDelegate::updateCentreText() {
  // Of what is shown: while the selected backup loads, the photos are those of the one before.
  m_ui->centreText->setText(photoCountText(m_arrayController.arrangement().count(),
                                           m_ui->browser->selectionIndexes().count()));
  m_details->update();
}

void SLAppDelegate::updateMenuItem() {
  BackupModel* backup = selectedBackup();
  if (!m_pendingMenuItem || !backup || (backup->encrypted() && !backup->imageItems().empty())) {
    return;
  }
  offerExport(*m_pendingMenuItem, *backup);
}

void SLAppDelegate::offerExport(QAction& item, BackupModel& backup) {
  const bool hasPhotos = !backup.imageItems().empty();
  const bool isPart =
      &backup == m_arrayController.content() && !m_arrayController.arrangement().showsAll();
  item.setText(!hasPhotos ? tr("No Photos") : isPart ? textOfExportAll() : tr("Export All..."));
  item.setEnabled(hasPhotos);
  disconnect(&item, nullptr, this, nullptr);
  if (hasPhotos) {
    connect(&item, &QAction::triggered, this, [this] { exportAllPhotosFromSelectedBackup(); });
  }
}

void SLAppDelegate::imageBrowserCellWasDoubleClickedAtIndex(ImageBrowserView&, int) {
  if (m_zoomAnimation) {
    m_zoomAnimation->stopAnimation();
  }
  const double target = m_zoomLevel >= maxZoom() ? zoomOutTarget : maxZoom();
  m_zoomAnimation =
      ORBAdjustingValueAnimation::initWithObjectKeyPathFinalValue(this, "zoomLevel", target);
  m_zoomAnimation->startAnimation();
}

}  // namespace snaplift
