#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTextBrowser>
#include <filesystem>
#include <functional>
#include <latch>

#include <gmock/gmock.h>

#include "SLAppDelegateFixture.h"

namespace snaplift {
namespace {

// Stands for the desktop, which knows what program opens a file or a folder.
class Desktop {
public:
  Desktop() {
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    QDesktopServices::setUrlHandler("file", &m_program, "setSource");
  }
  ~Desktop() { QDesktopServices::unsetUrlHandler("file"); }

  QString opened() const { return m_program.source().toLocalFile(); }
  bool waitForOpened() {
    return QTest::qWaitFor([this] { return !opened().isEmpty(); });
  }

private:
  QTextBrowser m_program;
};

TEST_F(SLAppDelegateTest, followsTheSelectionOfPhotos) {
  launchWith(5);
  EXPECT_FALSE(m_delegate->hasSelection());
  EXPECT_FALSE(action("actionExportSelected").isEnabled());
  EXPECT_TRUE(action("actionExportAll").isEnabled());
  auto& button = child<QPushButton>("exportButton");
  EXPECT_TRUE(button.isEnabled());
  QSignalSpy exportsAll(&action("actionExportAll"), &QAction::triggered);
  QSignalSpy exportsSelected(&action("actionExportSelected"), &QAction::triggered);
  button.click();
  EXPECT_EQ(exportsAll.count(), 1);
  EXPECT_EQ(button.toolTip(), action("actionExportAll").toolTip());
  browser().stepTo(2);
  button.click();
  EXPECT_EQ(exportsSelected.count(), 1);
  EXPECT_EQ(button.accessibleDescription(), action("actionExportSelected").toolTip());
  EXPECT_EQ(centreText(), "1 of 5 Photos Selected");
  auto& status = child<QLabel>("centreText");  // gives way where its room is narrow
  EXPECT_LT(status.minimumSizeHint().width(), status.sizeHint().width() / 2);
  action("actionDeselect").trigger();
  EXPECT_EQ(centreText(), "5 Photos");
  EXPECT_FALSE(m_delegate->property("hasSelection").toBool());
}

TEST_F(SLAppDelegateTest, tellsMissingAndShortPhotosApart) {
  const std::string folder = addBackup("a", 3, 100);
  std::filesystem::remove(contentOf(folder, 1));
  std::filesystem::resize_file(contentOf(folder, 2), m_picture.size() - 1);
  launch();
  ASSERT_TRUE(waitForText("3 Photos"));
  const auto isKnown = [this](int index) { return browser().thumbnailAtIndex(index) != nullptr; };
  ASSERT_TRUE(QTest::qWaitFor(
      [&] { return isKnown(0) && isKnown(1) && isKnown(2) && !browser().isLoadingThumbnails(); }));
  EXPECT_EQ(browser().thumbnailAtIndex(0)->state, Thumbnail::State::Missing);
  EXPECT_EQ(troubleOf(*browser().thumbnailAtIndex(1)).word, "Incomplete");
  EXPECT_EQ(troubleOf(*browser().thumbnailAtIndex(2)).word, "");
}

TEST_F(SLAppDelegateTest, saysThatABackupIsEncryptedWheneverItsPhotosAreAskedFor) {
  addBackup("a", 2, 100, true);
  addBackup("b", 3, 50);
  launch();
  const auto dismissAlert = [&] {
    QMessageBox* box = alert();
    ASSERT_TRUE(box);
    EXPECT_EQ(box->text(), "This Backup is Encrypted");
    EXPECT_EQ(box->informativeText(),
              "Snaplift cannot recover photos from this backup because it is encrypted.  You must "
              "use iTunes to restore them to an iOS device.");
    EXPECT_EQ(centreText(), "2 Photos");  // of this backup, while the alert stands
    answer(box, "Ok");
    EXPECT_FALSE(m_delegate->window()->findChild<QFileDialog*>());
  };
  dismissAlert();
  EXPECT_EQ(text(), "Backup is Encrypted");
  EXPECT_FALSE(showsBrowser());
  select(2);
  ASSERT_TRUE(waitForText("3 Photos"));
  select(1);
  dismissAlert();
  action("actionExportAll").trigger();
  dismissAlert();
  QAction* item = contextMenu(1)->actions().front();
  EXPECT_EQ(item->text(), "Export All...");
  item->trigger();
  dismissAlert();
  EXPECT_FALSE(action("actionExportSelected").isEnabled());
}

TEST_F(SLAppDelegateTest, saysOnceThatABackupIsDamaged) {
  const std::string folder = addBackup("a", 2, 100);
  addBackup("b", 3, 50);
  m_tree.write("root/a/Manifest.mbdb", "no manifest");
  launch();
  QMessageBox* box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "This Backup is Damaged");
  EXPECT_EQ(text(), "No Photos Found in This Backup");
  EXPECT_FALSE(showsBrowser());
  EXPECT_FALSE(action("actionExportAll").isEnabled());
  EXPECT_FALSE(child<QPushButton>("exportButton").isEnabled());
  EXPECT_TRUE(action("actionReveal").isEnabled());
  box->buttons().front()->click();
  select(2);
  ASSERT_TRUE(waitForText("3 Photos"));
  select(1);
  ASSERT_TRUE(waitForText("No Photos"));
  // One that is looked at after it, if somebody suspected it again.
  auto& disks = *m_delegate->findChild<DiskWatch*>();
  bool wasLookedAt = false;
  QObject::connect(&disks, &DiskWatch::looked, m_delegate.get(),
                   [&](const std::string& backup) { wasLookedAt |= backup.ends_with("/b"); });
  disks.suspect(m_tree.path("root/b"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return wasLookedAt; }));
  EXPECT_FALSE(m_delegate->window()->findChild<QMessageBox*>());
}

TEST_F(SLAppDelegateTest, withoutBackupsSaysSoAndQuits) {
  launch();
  QMessageBox* box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "No backup folders found");
  EXPECT_EQ(box->informativeText(),
            "Snaplift could not locate any valid iOS backups in your ~/Library/Application "
            "Support/MobileSync/Backups/ folder.");
  answer(box, "Choose Folder...");
  EXPECT_TRUE(m_delegate->window()->findChild<QFileDialog*>());

  launch();
  box = alert();
  ASSERT_TRUE(box);
  QMetaObject::invokeMethod(box->defaultButton(), "click", Qt::QueuedConnection);
  QApplication::exec();  // returns because the application quits
}

// Holds the thread of a backup's load at its beginning, and tells of its end.
class HeldLoad {
public:
  explicit HeldLoad(BackupModel* backup)
      : m_hold(observe(startedLoadingNotification, backup, [this] { m_release.wait(); })),
        m_watch(observe(finishedLoadingNotification, backup, [this] { m_finished = true; })) {}

  void release() { m_release.count_down(); }
  bool waitForFinish() {
    return QTest::qWaitFor([this] { return m_finished.load(); });
  }

private:
  static NotificationCenter::Token observe(std::string_view name, BackupModel* backup,
                                           const std::function<void()>& act) {
    return NotificationCenter::defaultCenter().addObserver(std::string(name), backup,
                                                           [act](const Notification&) { act(); });
  }

  std::latch m_release{1};
  std::atomic<bool> m_finished = false;
  NotificationCenter::Token m_hold, m_watch;
};

TEST_F(SLAppDelegateTest, showsTheOldPhotosUntilALoadEndsAndIgnoresOneThatComesTooLate) {
  addBackup("a", 3, 100);
  addBackup("b", 7, 50);
  launch();
  ASSERT_TRUE(waitForText("3 Photos"));
  HeldLoad late(backupAtRow(2));
  select(2);
  browser().stepTo(1);
  EXPECT_EQ(centreText(), "1 of 3 Photos Selected");
  {
    HeldLoad again(backupAtRow(1));
    again.release();
    select(1);
    ASSERT_TRUE(again.waitForFinish());  // so that nothing but the late load can come now
  }
  late.release();
  ASSERT_TRUE(late.waitForFinish());
  EXPECT_EQ(browser().itemCount(), 3);
  EXPECT_EQ(centreText(), "3 Photos");
}

TEST_F(SLAppDelegateTest, everyCommandDoesWhatItSays) {
  const std::string folder = addBackup("a", 3, 100);
  addBackup("b", 2, 50);
  launch();
  ASSERT_TRUE(waitForText("3 Photos"));
  Desktop desktop;
  QWidget* window = m_delegate->window();
  const auto dialog = [&] { return window->findChild<QDialog*>(); };
  const auto zoom = [&] { return browser().zoomValue(); };
  const auto selected = [&] { return browser().selectionIndexes().count(); };
  const float start = zoom();
  const std::pair<const char*, std::function<bool()>> commands[] = {
      {"actionSelectAll", [&] { return selected() == 3; }},
      {"actionInvertSelection", [&] { return selected() == 0; }},
      {"actionInvertSelection", [&] { return selected() == 3; }},
      {"actionExportSelected", [&] { return dialog() && dialog()->windowTitle() == "Export"; }},
      {"actionCopy", [] { return QApplication::clipboard()->mimeData()->hasUrls(); }},
      {"actionDeselect", [&] { return selected() == 0; }},
      {"actionExportAll", [&] { return dialog() && dialog()->windowTitle() == "Export"; }},
      {"actionOpenFolder", [&] { return dialog() && dialog()->windowTitle() == "Open"; }},
      {"actionZoomIn", [&] { return zoom() > start; }},
      {"actionStartSize", [&] { return zoom() == start; }},
      {"actionZoomOut", [&] { return zoom() < start; }},
      {"actionPreview", [&] { return browser().isPreviewOpen(); }},
      {"actionPreview", [&] { return !browser().isPreviewOpen(); }},
      {"actionAbout", [&] { return dialog() && dialog()->windowTitle() == "About Snaplift"; }},
      {"actionReveal", [&] { return desktop.opened().toStdString() == folder; }},
      {"actionClose", [&] { return !window->isVisible(); }},
      {"actionCloseFolder", [&] { return sourceList().numberOfRows() == 0; }},
      {"actionQuit", [&] { return !window->isVisible(); }}};
  for (const auto& [name, isDone] : commands) {
    window->show();
    EXPECT_TRUE(action(name).isEnabled()) << name;
    action(name).trigger();
    EXPECT_TRUE(QTest::qWaitFor([&] { return isDone(); })) << name;
    delete dialog();
  }
}

TEST_F(SLAppDelegateTest, tellsApartRowsOfOneNameAndDescribesThem) {
  const std::string first = addBackup("one", 3, 1318420800);
  addBackup("two", 1, 1318420900);
  addBackup("three", 1, 1318420900);
  addBackup("three", 1, 1318420900, false, "disk/");
  addBackup("other", 1, 1318020900);
  launch({m_tree.path("disk")});
  ASSERT_TRUE(QTest::qWaitFor([&] { return sourceList().numberOfRows() == 6; }));
  EXPECT_EQ(sourceList().objectValueForItem(sourceList().itemAtRow(0)), "ANNA'S PHONE");
  QStringList titles;
  for (int row = 1; row < sourceList().numberOfRows(); ++row) {
    titles << sourceList().objectValueForItem(sourceList().itemAtRow(row)).toString();
  }
  const auto date = [](std::int64_t seconds) {
    return QString::fromStdString(longDateText(instantFromUnixTime(seconds)));
  };
  const auto time = [](std::int64_t seconds) {
    return ", " + QString::fromStdString(timeOfDayText(instantFromUnixTime(seconds)));
  };
  const QString late = date(1318420900);
  EXPECT_EQ(titles, QStringList({late + " (disk)", late + " (root)", late + " (two)",
                                 date(1318420800) + time(1318420800), date(1318020900)}));
  const auto described = [&] {
    return m_delegate->sourceListDetailsForItem(sourceList(), backupAtRow(4)).value_or("");
  };
  const QString known = date(1318420800) + time(1318420800) + "\nSystem version 5.0\n" +
                        QString::fromStdString(first);
  EXPECT_EQ(described(), known);
  select(4);
  EXPECT_TRUE(waitForText("3 Photos"));
  EXPECT_EQ(described(), known + "\n3 Photos");
}

TEST_F(SLAppDelegateTest, saysWhatIsNotShownAndShowsItFromThenOn) {
  qputenv("XDG_STATE_HOME", QByteArray::fromStdString(m_tree.path("state")));
  samples::SampleBackup backup{.deviceName = "Anna's Phone", .productVersion = "5.0"};
  for (const char* name : {"a.MOV", "b.PNG", "c.GIF", "d.mp4"}) {
    backup.files.push_back({.domain = "CameraRollDomain",
                            .path = std::string("Media/DCIM/100APPLE/") + name,
                            .content = m_picture});
  }
  samples::writeBackup(m_tree.path("root/a"), backup);
  addBackup("older", 2, -100);
  launch({}, true);
  auto& notice = child<QWidget>("mediaNotice");
  const auto shows = [&](const QString& expected) {
    return waitForText(expected) && QTest::qWaitFor([&] { return notice.isVisible(); });
  };
  ASSERT_TRUE(shows("1 Photo"));
  EXPECT_EQ(notice.accessibleName(), "2 films and 1 other picture are not shown");
  select(2);
  EXPECT_TRUE(waitForText("2 Photos"));
  EXPECT_FALSE(notice.isVisible());
  select(1);
  ASSERT_TRUE(shows("1 Photo"));
  notice.findChild<QPushButton*>()->click();
  EXPECT_TRUE(waitForText("4 Photos"));
  EXPECT_FALSE(notice.isVisible());
  EXPECT_TRUE(action("actionOtherMedia").isChecked());
  EXPECT_EQ(dropAllPhotosInto("out")->size(), 4);
  action("actionOtherMedia").setChecked(false);
  EXPECT_TRUE(waitForText("1 Photo"));
  action("actionOtherMedia").setChecked(true);
  launch({}, true);
  EXPECT_TRUE(waitForText("4 Photos"));
}

TEST_F(SLAppDelegateTest, opensACopyOfAFilmInAPlayerAndSaysWhatIsUnfinished) {
  const std::string film = "Media/DCIM/100APPLE/a.MOV";
  samples::writeBackup(m_tree.path("root/a"),
                       {.generation = samples::Generation::Ten,
                        .deviceName = "Anna's Phone",
                        .productVersion = "14.3",
                        .files = {{.domain = "CameraRollDomain", .path = film, .content = "film"}},
                        .unfinished = true});
  launch();
  ASSERT_TRUE(waitForText("1 Photo"));
  EXPECT_THAT(
      m_delegate->sourceListDetailsForItem(sourceList(), backupAtRow(1)).value_or("").toStdString(),
      testing::HasSubstr("\nNot finished by the device's backup\n"));
  action("actionPreview").trigger();
  Desktop desktop;
  auto* button = browser().findChild<QPushButton*>();
  ASSERT_EQ(button->text(), "Open in Player");
  button->click();
  EXPECT_TRUE(desktop.waitForOpened());
  const QString opened = desktop.opened();
  EXPECT_TRUE(opened.endsWith("/a.MOV"));
  EXPECT_FALSE(opened.startsWith(QString::fromStdString(m_tree.path("root"))));
  QFile copy(opened);
  EXPECT_TRUE(copy.open(QIODevice::ReadOnly) && copy.readAll() == "film");
}

TEST_F(SLAppDelegateTest, offersAMenuForBackupsOnly) {
  const std::string folder = addBackup("a", 2, 100);
  addBackup("b", 0, 50);
  addBackup("c", 2, 20, true);
  launch();
  ASSERT_TRUE(waitForText("2 Photos"));
  EXPECT_EQ(contextMenu(0), nullptr);
  EXPECT_EQ(contextMenu(1, Qt::LeftButton), nullptr);
  EXPECT_EQ(contextMenu(1, Qt::LeftButton, Qt::ShiftModifier), nullptr);
  EXPECT_NE(contextMenu(1, Qt::LeftButton, Qt::ControlModifier), nullptr);
  EXPECT_EQ(contextMenu(1, Qt::MiddleButton, Qt::ControlModifier), nullptr);
  EXPECT_EQ(contextMenu(99), nullptr);

  const auto titles = [](const QMenu* menu) {
    QStringList all;
    for (const QAction* item : menu->actions()) {
      all << item->text();
    }
    return all;
  };
  EXPECT_EQ(titles(contextMenu(1)), QStringList({"Export All...", "", "Reveal In Finder"}));
  contextMenu(1)->actions().front()->trigger();
  EXPECT_TRUE(m_delegate->window()->findChild<QFileDialog*>());
  Desktop desktop;
  contextMenu(1)->actions().back()->trigger();
  EXPECT_TRUE(desktop.waitForOpened());
  EXPECT_EQ(desktop.opened().toStdString(), folder);
  HeldLoad held(backupAtRow(2));
  QMenu* pending = contextMenu(2);
  EXPECT_EQ(titles(pending), QStringList({"Loading...", "", "Reveal In Finder"}));
  EXPECT_FALSE(pending->actions().front()->isEnabled());
  held.release();
  EXPECT_TRUE(QTest::qWaitFor([&] { return pending->actions().front()->text() == "No Photos"; }));
  EXPECT_FALSE(pending->actions().front()->isEnabled());
  EXPECT_EQ(titles(contextMenu(2)), QStringList({"No Photos", "", "Reveal In Finder"}));

  HeldLoad heldEncrypted(backupAtRow(3));
  pending = contextMenu(3);
  heldEncrypted.release();
  answer(alert(), "Ok");
  EXPECT_EQ(pending->actions().front()->text(), "Loading...");
}

TEST_F(SLAppDelegateTest, zoomsBackAndForthWithADoubleClick) {
  launchWith(3);
  auto& slider = child<QSlider>("zoomSlider");
  EXPECT_FLOAT_EQ(browser().zoomValue(), 0.3F);
  m_delegate->imageBrowserCellWasDoubleClickedAtIndex(browser(), 0);
  EXPECT_TRUE(QTest::qWaitFor([&] { return m_delegate->zoomLevel() == 1.0F; }));
  EXPECT_EQ(slider.value(), slider.maximum());
  EXPECT_EQ(browser().zoomValue(), 1.0F);
  m_delegate->imageBrowserCellWasDoubleClickedAtIndex(browser(), 0);
  EXPECT_TRUE(QTest::qWaitFor([&] { return m_delegate->zoomLevel() == 0.3F; }));
  QTest::keyClick(&slider, Qt::Key_Right);
  EXPECT_FLOAT_EQ(browser().zoomValue(), 0.35F) << "a step that one sees";
  EXPECT_EQ(slider.accessibleDescription(), "Pictures at 35 percent of their largest size");
  slider.setValue(slider.minimum());
  EXPECT_FLOAT_EQ(browser().zoomValue(), 0.1F);
  browser().setZoomValue(1.15F);
  EXPECT_EQ(m_delegate->zoomLevel(), 1.15F);
  EXPECT_EQ(browser().zoomValue(), 1.15F);
}

TEST_F(SLAppDelegateTest, canQuitWhileABackupLoads) {
  addBackup("a", 3, 100);
  std::latch begun(1);
  const auto hold = NotificationCenter::defaultCenter().addObserver(
      std::string(startedLoadingNotification), nullptr,
      [&](const Notification&) { begun.count_down(); });
  launch();
  begun.wait();
  m_delegate.reset();  // while the load waits for this thread, or is about to
}

}  // namespace
}  // namespace snaplift
