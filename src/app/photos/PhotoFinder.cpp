#include "app/photos/PhotoFinder.h"

#include <QAction>
#include <QActionGroup>

#include "app/photos/FindBar.h"
#include "widgets/desktop/PlainText.h"
#include "widgets/photogrid/ImageBrowserView.h"

namespace snaplift {

PhotoFinder::PhotoFinder(BackupPhotos& photos, ImageBrowserView& browser, FindBar& bar,
                         const Commands& commands)
    : m_photos(photos), m_browser(browser), m_bar(bar), m_commands(commands) {
  for (QActionGroup* group : {commands.order, commands.direction}) {
    connect(group, &QActionGroup::triggered, this, &PhotoFinder::settingsDidChange);
  }
  for (QAction* choice : {commands.byMonth, commands.onlyOriginals}) {
    connect(choice, &QAction::triggered, this, &PhotoFinder::settingsDidChange);
  }
  connect(commands.dates, &QAction::toggled, &browser, &ImageBrowserView::setShowsSubtitles);
  connect(commands.dates, &QAction::triggered, this, &PhotoFinder::settingsChanged);
  connect(&browser, &ImageBrowserView::selectionIndexesChanged, this, [this] {
    if (!m_isArranging) {
      m_selected.clear();  // somebody has chosen anew
    }
  });
  connect(commands.find, &QAction::triggered, &bar, [&bar] { bar.open(); });
  connect(&bar, &FindBar::textChanged, this, &PhotoFinder::arrange);
  connect(&bar, &FindBar::left, &browser, [&browser] { browser.setFocus(); });
}

PhotoWishes PhotoFinder::wishes() const {
  const auto checked = [](const QActionGroup& group) {
    return group.actions().indexOf(group.checkedAction());
  };
  return {.order = static_cast<PhotoOrder>(checked(*m_commands.order)),
          .isDescending = checked(*m_commands.direction) == 1,
          .isByMonth = m_commands.byMonth->isChecked(),
          .onlyOriginals = m_commands.onlyOriginals->isChecked(),
          .text = m_bar.text().toStdString()};
}

void PhotoFinder::setWishes(const PhotoWishes& wishes) {
  m_commands.order->actions()[static_cast<qsizetype>(wishes.order)]->setChecked(true);
  m_commands.direction->actions()[wishes.isDescending ? 1 : 0]->setChecked(true);
  m_commands.byMonth->setChecked(wishes.isByMonth);
  m_commands.onlyOriginals->setChecked(wishes.onlyOriginals);
  arrange();
}

void PhotoFinder::setShowsDates(bool shows) {
  m_commands.dates->setChecked(shows);
}

bool PhotoFinder::showsDates() const {
  return m_commands.dates->isChecked();
}

void PhotoFinder::settingsDidChange() {
  arrange();
  emit settingsChanged();
}

void PhotoFinder::arrange() {
  const PhotoWishes wanted = wishes();
  if (wanted == m_photos.arrangement().wishes()) {
    return;  // a choice that was made already
  }
  m_isArranging = true;
  keepSelection();
  const std::vector<int> moves = m_photos.setWishes(wanted);
  m_browser.rearrangeData([&](int index) { return moves[static_cast<std::size_t>(index)]; });
  IndexSet selection(m_photos.arrangement().count());
  for (const int number : m_selected) {
    selection.insert(m_photos.arrangement().placeOf(number));
  }
  m_browser.setSelectionIndexes(selection);
  m_isArranging = false;
  tellWhatIsHidden();
}

// Of photos that are hidden now or were before, the browser knows nothing.
void PhotoFinder::keepSelection() {
  if (m_selected.empty()) {
    m_selected = m_browser.selectionIndexes().indexes();
    for (int& selected : m_selected) {
      selected = m_photos.arrangement().numberAt(selected);
    }
  }
}

void PhotoFinder::contentDidChange() {
  m_selected.clear();
  tellWhatIsHidden();
}

void PhotoFinder::tellWhatIsHidden() {
  const int hidden = m_photos.arrangement().countOfHiddenKinds();
  m_bar.tell(hidden == 0   ? QString()
             : hidden == 1 ? tr("1 edited or other picture is hidden")
                           : tr("%Ln edited and other pictures are hidden", nullptr, hidden));
  emit arranged();
}

bool PhotoFinder::takesTyping(const QString& text) {
  const bool isDigit = !text.isEmpty() && text.front().isDigit();
  if (isDigit) {
    m_bar.open(text);
  }
  return isDigit;
}

QString PhotoFinder::noMatchText() const {
  const PhotoArrangement& shown = m_photos.arrangement();
  if (shown.count() > 0 || shown.showsAll()) {
    return {};
  }
  const QString text = m_bar.text().trimmed();
  return text.isEmpty() ? tr("No Photos Are Camera Originals")
                        : tr("No Photos Match “%1”").arg(plainText::shortened(text));
}

void PhotoFinder::showSome() {
  m_bar.close();
  if (m_photos.arrangement().count() == 0 && m_commands.onlyOriginals->isChecked()) {
    m_commands.onlyOriginals->trigger();
  }
  m_browser.setFocus();
}

}  // namespace snaplift
