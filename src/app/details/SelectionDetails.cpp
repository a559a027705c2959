#include "app/details/SelectionDetails.h"

#include <QLabel>
#include <QLocale>
#include <QTimer>
#include <utility>

#include "app/details/DetailsText.h"
#include "app/details/PhotoDetails.h"
#include "widgets/photogrid/ImageBrowserView.h"

namespace snaplift {

SelectionDetails::SelectionDetails(ImageBrowserView& browser, PhotoDetails& panel, QLabel& bytes,
                                   Look look)
    : m_browser(browser), m_panel(panel), m_bytes(bytes), m_look(std::move(look)) {
  connect(&m_summer, &PhotoSummer::summed, this, &SelectionDetails::tellSums);
  connect(&m_panel, &PhotoDetails::leaveWanted, this, [this] { m_browser.setFocus(); });
}

// A rubber band selects anew with each step of the pointer.
void SelectionDetails::update() {
  if (!std::exchange(m_isDue, true)) {
    QTimer::singleShot(0, this, [this] {
      m_isDue = false;
      lookAgain();
    });
  }
}

void SelectionDetails::setOpen(bool open) {
  const bool hadKeyboard = m_panel.isAncestorOf(m_panel.window()->focusWidget());
  m_panel.setVisible(open);
  if (!open && hadKeyboard) {
    m_browser.setFocus();
  }
  update();
}

void SelectionDetails::lookAgain() {
  Shown shown = m_look();
  m_showsSums = shown.photo == nullptr;
  m_title =
      shown.selected == 0 ? shown.title : tr("%1 Selected").arg(QLocale().toString(shown.selected));
  m_backup = shown.selected == 0 ? std::move(shown.backup) : std::vector<Fact>();
  if (shown.photos.empty()) {
    m_summer.stop();
    m_bytes.clear();
    m_panel.showSums(m_title, m_backup, {});
    return;
  }
  m_summer.sum(std::move(shown.photos));
  if (!m_showsSums && m_panel.isVisible()) {
    const Thumbnail* known =
        m_browser.thumbnailAtIndex(m_browser.selectionIndexes().indexes().front());
    m_panel.showPhoto(*shown.photo, std::move(shown.item), known, shown.film);
  }
}

void SelectionDetails::tellSums(const PhotoSums& sums) {
  const bool isKnown = sums.bytes > 0;
  m_bytes.setText(isKnown ? detailsText::bytes(sums.bytes) : QString());
  m_bytes.setAccessibleDescription(isKnown ? tr("Size of these photos") : QString());
  if (m_showsSums && m_panel.isVisible()) {
    m_panel.showSums(m_title, m_backup, sums);
  }
}

}  // namespace snaplift
