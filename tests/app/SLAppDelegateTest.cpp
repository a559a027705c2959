#include <QApplication>
#include <QIcon>
#include <QMouseEvent>
#include <QPushButton>
#include <QSlider>
#include <latch>

#include "SLAppDelegateFixture.h"
#include "app/StatusText.h"

namespace snaplift {
namespace {

TEST(StatusText, countsPhotosAndSelections) {
  struct Case {
    int photos, selected;
    const char* text;
  };
  for (const Case& c : {Case{0, 0, "No Photos"}, Case{0, 3, "No Photos"}, Case{1, 0, "1 Photo"},
                        Case{1, 1, "1 of 1 Photos Selected"}, Case{5, 0, "5 Photos"},
                        Case{5, 2, "2 of 5 Photos Selected"}, Case{12345, 0, "12345 Photos"}}) {
    EXPECT_EQ(photoCountText(c.photos, c.selected), c.text);
  }
  EXPECT_EQ(exportProgressText(1), "Exporting: 1 Photos Remaining");
}

TEST_F(SLAppDelegateTest, showsDevicesAndLoadsTheFirstBackup) {
  addBackup("a", 3, 100);
  addBackup("b", 1, 50);
  launch();
  EXPECT_EQ(sourceList().numberOfRows(), 3);
  EXPECT_EQ(sourceList().objectValueForItem(sourceList().itemAtRow(0)), "ANNA'S PHONE");
  EXPECT_EQ(sourceList().objectValueForItem(sourceList().itemAtRow(1)),
            QString::fromStdString(longDateText(instantFromUnixTime(100))));
  EXPECT_TRUE(waitForText("3 Photos"));
  EXPECT_TRUE(showsBrowser());
  EXPECT_EQ(browser().titleAtIndex(0), "IMG_0001.PNG");
  EXPECT_EQ(browser().itemAtIndex(0)->imageOrigin(), "Media/DCIM/100APPLE");
  select(2);
  EXPECT_TRUE(waitForText("1 Photo"));
  select(1);
  EXPECT_TRUE(waitForText("3 Photos"));
}

TEST_F(SLAppDelegateTest, carriesItsPictures) {
  addBackup("a", 1, 100);
  launch();
  const auto icon = m_delegate->sourceListIconForItem(sourceList(), backupAtRow(1));
  EXPECT_EQ(icon.value_or(QPixmap()).deviceIndependentSize(), QSizeF(16, 16));
  EXPECT_EQ(child<QLabel>("smallPictureMark").pixmap().deviceIndependentSize(), QSizeF(12, 12));
  EXPECT_EQ(child<QLabel>("largePictureMark").pixmap().deviceIndependentSize(), QSizeF(18, 18));
  const QIcon windowIcon = m_delegate->window()->windowIcon();
  for (const QSize size : {QSize(16, 16), QSize(128, 128)}) {
    EXPECT_EQ(windowIcon.pixmap(size).toImage().size(), size);
  }
}

TEST_F(SLAppDelegateTest, followsTheSelectionOfPhotos) {
  addBackup("a", 5, 100);
  launch();
  ASSERT_TRUE(waitForText("5 Photos"));
  EXPECT_FALSE(m_delegate->hasSelection());
  EXPECT_FALSE(action("actionExportSelected").isEnabled());
  EXPECT_TRUE(action("actionExportAll").isEnabled());
  browser().stepTo(2);
  EXPECT_EQ(centreText(), "1 of 5 Photos Selected");
  EXPECT_TRUE(action("actionExportSelected").isEnabled());
  action("actionSelectAll").trigger();
  EXPECT_EQ(centreText(), "5 of 5 Photos Selected");
  action("actionDeselect").trigger();
  EXPECT_EQ(centreText(), "5 Photos");
  EXPECT_FALSE(m_delegate->property("hasSelection").toBool());
}

TEST_F(SLAppDelegateTest, saysThatABackupHasNoPhotos) {
  addBackup("a", 0, 100);
  launch();
  EXPECT_TRUE(QTest::qWaitFor([&] { return text() == "No Photos Found in This Backup"; }));
  EXPECT_FALSE(showsBrowser());
  EXPECT_EQ(centreText(), "No Photos");
  EXPECT_FALSE(action("actionExportAll").isEnabled());
  EXPECT_TRUE(action("actionReveal").isEnabled());
}

TEST_F(SLAppDelegateTest, saysThatABackupIsEncrypted) {
  addBackup("a", 2, 100, true);
  launch();
  QMessageBox* box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "This Backup is Encrypted");
  EXPECT_EQ(box->informativeText(),
            "Snaplift cannot recover photos from this backup because it is encrypted.  You must "
            "use iTunes to restore them to an iOS device.");
  EXPECT_EQ(text(), "Backup is Encrypted");
  EXPECT_FALSE(showsBrowser());
  box->buttons().front()->click();
  EXPECT_TRUE(waitForText("2 Photos"));
  EXPECT_FALSE(action("actionExportAll").isEnabled());
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
  box->buttons().front()->click();
  select(2);
  ASSERT_TRUE(waitForText("3 Photos"));
  select(1);
  ASSERT_TRUE(waitForText("No Photos"));
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
  QMetaObject::invokeMethod(box->buttons().front(), "click", Qt::QueuedConnection);
  QApplication::exec();  // returns because the application quits
}

TEST_F(SLAppDelegateTest, ignoresALoadThatFinishesTooLate) {
  addBackup("a", 3, 100);
  addBackup("b", 7, 50);
  launch();
  ASSERT_TRUE(waitForText("3 Photos"));
  std::latch release(1);
  std::atomic<bool> finished = false;
  NotificationCenter& center = NotificationCenter::defaultCenter();
  const auto hold = center.addObserver(std::string(startedLoadingNotification), backupAtRow(2),
                                       [&](const Notification&) { release.wait(); });
  const auto watch = center.addObserver(std::string(finishedLoadingNotification), backupAtRow(2),
                                        [&](const Notification&) { finished = true; });
  select(2);
  select(1);
  release.count_down();
  EXPECT_TRUE(QTest::qWaitFor([&] { return finished.load(); }));
  EXPECT_TRUE(waitForText("3 Photos"));
  EXPECT_EQ(browser().itemCount(), 3);
}

TEST_F(SLAppDelegateTest, offersAMenuForBackupsOnly) {
  addBackup("a", 2, 100);
  addBackup("b", 0, 50);
  launch();
  ASSERT_TRUE(waitForText("2 Photos"));
  EXPECT_EQ(contextMenu(0), nullptr);
  EXPECT_EQ(contextMenu(1, Qt::LeftButton), nullptr);
  EXPECT_EQ(contextMenu(99), nullptr);

  const auto titles = [](const QMenu* menu) {
    QStringList all;
    for (const QAction* item : menu->actions()) {
      all << item->text();
    }
    return all;
  };
  EXPECT_EQ(titles(contextMenu(1)), QStringList({"Export All...", "", "Reveal In Finder"}));
  std::latch release(1);
  const auto hold = NotificationCenter::defaultCenter().addObserver(
      std::string(startedLoadingNotification), backupAtRow(2),
      [&](const Notification&) { release.wait(); });
  QMenu* pending = contextMenu(2);
  EXPECT_EQ(titles(pending), QStringList({"Loading...", "", "Reveal In Finder"}));
  EXPECT_FALSE(pending->actions().front()->isEnabled());
  release.count_down();
  EXPECT_TRUE(QTest::qWaitFor([&] { return pending->actions().front()->text() == "No Photos"; }));
  EXPECT_FALSE(pending->actions().front()->isEnabled());
  EXPECT_EQ(titles(contextMenu(2)), QStringList({"No Photos", "", "Reveal In Finder"}));
}

TEST_F(SLAppDelegateTest, zoomsBackAndForthWithADoubleClick) {
  addBackup("a", 3, 100);
  launch();
  ASSERT_TRUE(waitForText("3 Photos"));
  auto& slider = child<QSlider>("zoomSlider");
  EXPECT_FLOAT_EQ(browser().zoomValue(), 0.3F);
  m_delegate->imageBrowserCellWasDoubleClickedAtIndex(browser(), 0);
  EXPECT_TRUE(QTest::qWaitFor([&] { return m_delegate->zoomLevel() == 1.0F; }));
  EXPECT_EQ(slider.value(), slider.maximum());
  EXPECT_EQ(browser().zoomValue(), 1.0F);
  m_delegate->imageBrowserCellWasDoubleClickedAtIndex(browser(), 0);
  EXPECT_TRUE(QTest::qWaitFor([&] { return m_delegate->zoomLevel() == 0.3F; }));
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
