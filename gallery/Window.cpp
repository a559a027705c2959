#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <atomic>
#include <latch>

#include "Gallery.h"
#include "app/SLAppDelegate.h"
#include "app/details/PhotoDetails.h"
#include "backups/BackupModel.h"
#include "foundation/NotificationCenter.h"
#include "foundation/files/TemporaryFolder.h"
#include "widgets/desktop/MainThread.h"
#include "widgets/desktop/NoticeBar.h"

namespace snaplift::gallery {
namespace {

// Long enough for a slow machine to decode the photos that are seen.
constexpr int patienceInMilliseconds = 60000;

template <class Condition>
void waitFor(const char* what, Condition condition) {
  if (!QTest::qWaitFor(condition, patienceInMilliseconds)) {
    qWarning("the picture is taken before %s", what);
  }
}

QMessageBox* visibleAlert() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    auto* alert = qobject_cast<QMessageBox*>(window);
    if (alert && alert->isVisible()) {
      return alert;
    }
  }
  return nullptr;
}

// The window over a backup root, in one palette, and the pictures of its states.
class WindowShots {
public:
  WindowShots(QString folder, QString palette)
      : m_folder(std::move(folder)), m_palette(std::move(palette)) {
    mainThread::resume();
  }

  void start(const std::string& root) { m_delegate.applicationDidFinishLaunching(root); }

  void shoot(const QString& state) { shoot(*m_delegate.window(), state); }

  void waitForPhotos() {
    waitFor("all photos are there",
            [this] { return browser().itemCount() > 0 && !browser().isLoadingThumbnails(); });
  }

  // The first backup while it loads: the end of the load is held until the picture is taken.
  void shootLoading(const std::string& root) {
    std::latch release(1);
    const auto hold = NotificationCenter::defaultCenter().addObserver(
        std::string(finishedLoadingNotification), nullptr,
        [&](const Notification&) { release.wait(); });
    start(root);
    waitFor("the load has begun", [this] { return label("text").text() == "Loading..."; });
    shoot("loading");
    release.count_down();
    waitForPhotos();
  }

  void shootPhotos() {
    shoot("photos");
    browser().setFocus();
    QTest::keyClick(&browser(), Qt::Key_Home);
    QTest::keyClick(&browser(), Qt::Key_Right);
    QTest::keyClick(&browser(), Qt::Key_Right, Qt::ShiftModifier);
    shoot("selection");
    browser().setPreviewOpen(true);
    waitForPhotos();
    shoot("preview");
    browser().setPreviewOpen(false);
  }

  // A year by its months, then a text that nothing matches.
  void shootFinding() {
    for (const char* choice : {"actionSortDate", "actionGroupByMonth", "actionDates",
                               "actionOriginalsOnly", "actionFind"}) {
      m_delegate.window()->findChild<QAction*>(choice)->trigger();
    }
    auto* field = m_delegate.window()->findChild<QLineEdit*>();
    field->setText("2020");
    waitForPhotos();
    shoot("found");
    field->setText("nowhere");
    shoot("not-found");
    QTest::keyClick(field, Qt::Key_Escape);
    for (const char* choice :
         {"actionSortBackup", "actionGroupByMonth", "actionDates", "actionOriginalsOnly"}) {
      m_delegate.window()->findChild<QAction*>(choice)->trigger();
    }
  }

  // Get Info of several photos, of one and of the backup.
  void shootDetails() {
    auto& panel = *m_delegate.window()->findChild<PhotoDetails*>();
    auto& facts = *panel.findChild<FactTable*>();
    m_delegate.window()->findChild<QAction*>("actionGetInfo")->trigger();
    browser().selectAll();
    waitFor("the sums are there", [&] { return facts.valueOf("Kinds") != nullptr; });
    shoot("info-selection");
    QTest::keyClick(&browser(), Qt::Key_Home);
    waitFor("the photo is read", [&] { return facts.valueOf("In the backup") != nullptr; });
    waitFor("its picture is there", [&] { return !panel.isLoading(); });
    shoot("info");
    browser().deselectAll();
    waitFor("the backup is told of", [&] { return facts.valueOf("System version") != nullptr; });
    shoot("info-backup");
    m_delegate.window()->findChild<QAction*>("actionGetInfo")->trigger();
  }

  void shootExport() {
    exportAll();
    shoot("exporting");
    waitFor("the export ends", [this] { return notice().isVisible(); });
    shoot("exported");
    notice().hide();
  }

  // The backup below the group of that title, whose manifest is cut off and a photo gone.
  void shootFailures(const QString& group) {
    auto& list = *m_delegate.window()->findChild<ORBSourceList*>();
    int row = 0;
    while (row < list.numberOfRows() - 1 && list.objectValueForItem(list.itemAtRow(row)) != group) {
      ++row;
    }
    selectAndLoad(list, row + 1);
    shootAlert("damaged-alert");
    dismissAlert();
    waitForPhotos();
    shoot("damaged");
    exportAll();
    waitFor("the export ends", [this] { return notice().isVisible(); });
    shoot("not-exported");
    for (QPushButton* button : notice().findChildren<QPushButton*>()) {
      if (button->text() == "Details...") {
        button->click();
      }
    }
    if (auto* details = m_delegate.window()->findChild<QTreeWidget*>()) {
      shoot(*details->window(), "not-exported-details");
      details->window()->close();
    }
    notice().hide();
  }

  // The first backup that has this to say in the message pane.
  void shootPane(const QString& message, const QString& state) {
    auto& list = *m_delegate.window()->findChild<ORBSourceList*>();
    for (int row = 0; row < list.numberOfRows() && label("text").text() != message; ++row) {
      if (list.levelForRow(row) > 0 && !list.isRowSelected(row)) {
        dismissAlert();  // of the row before
        selectAndLoad(list, row);
      }
    }
    if (QMessageBox* alert = visibleAlert()) {
      shoot(*alert, state + "-alert");
    }
    dismissAlert();
    shoot(state);
  }

  void shootAlert(const QString& state) {
    waitFor("the alert is up", [] { return visibleAlert() != nullptr; });
    if (QMessageBox* alert = visibleAlert()) {
      shoot(*alert, state);
    }
  }

  void shootMenu(const char* name) {
    auto* menu = m_delegate.window()->findChild<QMenu*>(name);
    menu->popup({});
    shoot(*menu, name);
    menu->close();
  }

private:
  void exportAll() {
    std::vector<ImageBrowserItemPointer> items;
    const int count = browser().itemCount();
    items.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
      items.push_back(browser().itemAtIndex(i));
    }
    m_delegate.imageBrowserExportItemsToDestination(browser(), items, temporaryFolder());
  }
  static void dismissAlert() {
    if (QMessageBox* alert = visibleAlert()) {
      alert->accept();
    }
  }
  // Returns when the window shows what the load has found.
  static void selectAndLoad(ORBSourceList& list, int row) {
    std::atomic<bool> finished = false;
    const auto watch = NotificationCenter::defaultCenter().addObserver(
        std::string(finishedLoadingNotification), list.itemAtRow(row).as<BackupModel>(),
        [&](const Notification&) { finished = true; });
    list.selectRowIndexesByExtendingSelection({row}, false);
    waitFor("a backup is loaded", [&] { return finished.load(); });
  }
  void shoot(QWidget& widget, const QString& state) {
    save(widget, m_folder, "window-" + state + "-" + m_palette);
  }
  ORBImageBrowserView& browser() { return *m_delegate.window()->findChild<ORBImageBrowserView*>(); }
  NoticeBar& notice() { return *m_delegate.window()->findChild<NoticeBar*>(); }
  QLabel& label(const char* name) { return *m_delegate.window()->findChild<QLabel*>(name); }

  QString m_folder;
  QString m_palette;
  SLAppDelegate m_delegate;
};

void paintStates(const QString& folder, const QString& palette) {
  {
    WindowShots shots(folder, palette);
    shots.shootLoading(defaultBackupRoot());
    shots.shootPhotos();
    shots.shootFinding();
    shots.shootDetails();
    shots.shootExport();
    for (const char* menu : {"menuFile", "menuEdit", "menuView", "menuSortBy"}) {
      shots.shootMenu(menu);
    }
    shots.shootFailures("CLARA'S PHONE (DROPPED)");
    shots.shootPane("Backup is Encrypted", "encrypted");
    shots.shootPane("No Photos Found in This Backup", "no-photos");
  }
  WindowShots shots(folder, palette);
  shots.start(temporaryFolder() + "/none");
  shots.shootAlert("no-backups");
}

}  // namespace

void paintWindow(const QString& folder) {
  QApplication::setPalette(lightPalette());
  paintStates(folder, "light");
  QApplication::setPalette(darkPalette());
  paintStates(folder, "dark");
}

}  // namespace snaplift::gallery
