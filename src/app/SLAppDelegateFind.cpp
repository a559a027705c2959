// The finding of photos: which of them are shown, and what the window says of the others.

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>

#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "ui_MainWindow.h"

namespace snaplift {

void SLAppDelegate::connectFinder() {
  m_finder = std::make_unique<PhotoFinder>(m_arrayController, *m_ui->browser, *m_ui->findBar,
                                           PhotoFinder::Commands{
                                               .order = m_ui->sortGroup,
                                               .direction = m_ui->directionGroup,
                                               .byMonth = m_ui->actionGroupByMonth,
                                               .onlyOriginals = m_ui->actionOriginalsOnly,
                                               .dates = m_ui->actionDates,
                                               .find = m_ui->actionFind,
                                           });
  m_ui->noMatchText->setFont(m_ui->text->font());
  connect(m_ui->showAllButton, &QPushButton::clicked, m_finder.get(), &PhotoFinder::showSome);
  connect(m_finder.get(), &PhotoFinder::arranged, this, &SLAppDelegate::tellWhatIsShown);
  connect(m_finder.get(), &PhotoFinder::settingsChanged, this, [this] {
    m_state.setLook({.wishes = m_finder->wishes(), .showsDates = m_finder->showsDates()});
  });
}

void SLAppDelegate::showPhotos() {
  const QString noMatch = m_finder->noMatchText();
  m_ui->noMatchText->setText(noMatch);
  m_ui->contentArea->setCurrentWidget(noMatch.isEmpty() ? m_ui->browser : m_ui->noMatchView);
}

void SLAppDelegate::tellWhatIsShown() {
  const QWidget* const shown = m_ui->contentArea->currentWidget();
  if (shown == m_ui->browser || shown == m_ui->noMatchView) {
    showPhotos();
  }
  const PhotoArrangement& photos = m_arrayController.arrangement();
  m_ui->shownText->setText(shownCountText(photos.count(), photos.countOfAll()));
  m_ui->shownText->setVisible(!photos.showsAll());
  updateCentreText();
  updateCommands();
}

QString SLAppDelegate::textOfExportAll() const {
  const PhotoArrangement& photos = m_arrayController.arrangement();
  return photos.showsAll()
             ? tr("Export &All...")
             : tr("Export &All Shown (%L1 of %L2)...").arg(photos.count()).arg(photos.countOfAll());
}

// The commands and the button, which exports what is selected, else what is shown.
void SLAppDelegate::sayWhatIsExported() {
  const PhotoArrangement& photos = m_arrayController.arrangement();
  const QString help = photos.showsAll()
                           ? tr("Copy every photo of this backup into a folder")
                           : tr("Copy the photos that are shown, %L1 of %L2, into a folder")
                                 .arg(photos.count())
                                 .arg(photos.countOfAll());
  m_ui->actionExportAll->setText(textOfExportAll());
  m_ui->actionExportAll->setToolTip(help);
  m_ui->actionExportAll->setStatusTip(help);
  const bool exportsAll = !m_ui->actionExportSelected->isEnabled();
  const QAction& action = exportsAll ? *m_ui->actionExportAll : *m_ui->actionExportSelected;
  m_ui->exportButton->setText(exportsAll && !photos.showsAll() ? tr("Export Shown...")
                                                               : tr("Export..."));
  m_ui->exportButton->setEnabled(action.isEnabled());
  m_ui->exportButton->setToolTip(action.toolTip());
  m_ui->exportButton->setAccessibleDescription(action.toolTip());
}

bool SLAppDelegate::imageBrowserTakesTyping(ImageBrowserView&, const QString& text) {
  return m_finder->takesTyping(text);
}

}  // namespace snaplift
