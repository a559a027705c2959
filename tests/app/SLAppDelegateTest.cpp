#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QSlider>
#include <QStackedWidget>
#include <QTest>
#include <latch>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/SLAppDelegate.h"
#include "app/StatusText.h"
#include "foundation/Log.h"
#include "samples/BackupWriter.h"
#include "support/TemporaryTree.h"
#include "toolkit/ActivityIndicator.h"
#include "toolkit/MainThread.h"

namespace snaplift {
namespace {

using testing::IsEmpty;

std::string picture() {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QImage image(32, 24, QImage::Format_RGB32);
  image.fill(Qt::darkGreen);
  image.save(&buffer, "PNG");
  return bytes.toStdString();
}

class SLAppDelegateTest : public testing::Test {
protected:
  SLAppDelegateTest() { mainThread::resume(); }

  // A backup with photos IMG_0001.PNG and so on; a later date is a newer backup.
  std::string addBackup(const std::string& name, int photos, std::int64_t date,
                        bool encrypted = false) {
    samples::SampleBackup backup{.generation = samples::Generation::Five,
                                 .deviceName = "Anna's Phone",
                                 .productVersion = "5.0",
                                 .encrypted = encrypted,
                                 .date = instantFromUnixTime(date)};
    for (int i = 1; i <= photos; ++i) {
      const std::string number = std::to_string(10000 + i).substr(1);
      backup.files.push_back({.domain = "CameraRollDomain",
                              .path = "Media/DCIM/100APPLE/IMG_" + number + ".PNG",
                              .content = m_picture});
    }
    const std::string folder = m_tree.path("root/" + name);
    samples::writeBackup(folder, backup);
    return folder;
  }

  void launch() {
    m_delegate = std::make_unique<SLAppDelegate>();
    m_delegate->applicationDidFinishLaunching(m_tree.path("root"));
  }

  template <class Child>
  Child& child(const char* name) {
    return *m_delegate->window()->findChild<Child*>(name);
  }
  QString text() { return child<QLabel>("text").text(); }
  QString centreText() { return child<QLabel>("centreText").text(); }
  QAction& action(const char* name) { return child<QAction>(name); }
  ORBSourceList& sourceList() { return child<ORBSourceList>("sourceList"); }
  ORBImageBrowserView& browser() { return child<ORBImageBrowserView>("browser"); }
  bool showsBrowser() { return child<QStackedWidget>("contentArea").currentWidget() == &browser(); }
  bool waitForText(const QString& expected) {
    return QTest::qWaitFor([&] { return centreText() == expected; });
  }
  void select(int row) { sourceList().selectRowIndexesByExtendingSelection({row}, false); }
  BackupModel* backupAtRow(int row) { return sourceList().itemAtRow(row).as<BackupModel>(); }

  // The alert that is up, once there is one.
  QMessageBox* alert() {
    QMessageBox* found = nullptr;
    EXPECT_TRUE(QTest::qWaitFor([&] {
      found = m_delegate->window()->findChild<QMessageBox*>();
      return found && found->isVisible();
    }));
    return found;
  }

  QMenu* contextMenu(int row, Qt::MouseButton button = Qt::RightButton) {
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(), QPointF(), button, button,
                      Qt::NoModifier);
    return m_delegate->sourceListMenuForEventItem(sourceList(), press, sourceList().itemAtRow(row))
        .value_or(nullptr);
  }

  std::optional<std::vector<std::string>> dropAllPhotosInto(const std::string& folder) {
    std::vector<ImageBrowserItemPointer> items;
    for (int i = 0; i < browser().itemCount(); ++i) {
      items.push_back(browser().itemAtIndex(i));
    }
    return m_delegate->imageBrowserExportItemsToDestination(browser(), items, folder);
  }

  const std::string m_picture = picture();
  TemporaryTree m_tree;
  LogCapture m_quietLog{[](const std::string&) {}};
  std::unique_ptr<SLAppDelegate> m_delegate;
};

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
  for (const QSize size : {QSize(16, 16), QSize(256, 256)}) {
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

TEST_F(SLAppDelegateTest, exportsIntoAFolderAndCountsDown) {
  addBackup("a", 40, 100);
  const std::string out = m_tree.makeFolder("out");
  launch();
  ASSERT_TRUE(waitForText("40 Photos"));
  const auto names = dropAllPhotosInto(out);
  ASSERT_TRUE(names);
  EXPECT_EQ(names->size(), 40U);
  EXPECT_EQ(names->front(), "IMG_0001.PNG");
  EXPECT_TRUE(centreText().startsWith("Exporting: ")) << centreText().toStdString();
  EXPECT_TRUE(child<ActivityIndicator>("exportSpinner").isAnimating());
  EXPECT_TRUE(waitForText("40 Photos"));
  EXPECT_FALSE(child<ActivityIndicator>("exportSpinner").isAnimating());
  EXPECT_EQ(m_tree.list("out").size(), 40U);
  EXPECT_EQ(m_tree.read("out/IMG_0040.PNG"), m_picture);
}

TEST_F(SLAppDelegateTest, exportsNothingIntoABackup) {
  const std::string folder = addBackup("a", 2, 100);
  launch();
  ASSERT_TRUE(waitForText("2 Photos"));
  const auto before = m_tree.list("root");
  EXPECT_THAT(*dropAllPhotosInto(folder), IsEmpty());
  EXPECT_TRUE(alert());
  EXPECT_EQ(m_tree.list("root"), before);
}

TEST_F(SLAppDelegateTest, promisesPhotosOnThePasteboard) {
  addBackup("a", 3, 100);
  launch();
  ASSERT_TRUE(waitForText("3 Photos"));
  action("actionSelectAll").trigger();
  action("actionCopy").trigger();
  const QMimeData* several = QApplication::clipboard()->mimeData();
  EXPECT_EQ(several->formats(), QStringList({"text/uri-list", "x-special/gnome-copied-files"}));
  const QByteArray urls = several->data("text/uri-list");
  EXPECT_EQ(urls.count("\r\n"), 3);
  QFile copied(QUrl(QString::fromUtf8(urls.split('\r').front())).toLocalFile());
  ASSERT_TRUE(copied.open(QIODevice::ReadOnly));
  EXPECT_EQ(copied.readAll().toStdString(), m_picture);
  EXPECT_TRUE(several->data("x-special/gnome-copied-files").startsWith("copy\nfile:///"));

  browser().stepTo(1);
  action("actionCopy").trigger();
  EXPECT_EQ(QApplication::clipboard()->mimeData()->data("image/png").toStdString(), m_picture);
  QApplication::clipboard()->clear();
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

TEST_F(SLAppDelegateTest, asksBeforeItStopsExporting) {
  addBackup("a", 500, 100);
  m_tree.makeFolder("out");
  launch();
  ASSERT_TRUE(waitForText("500 Photos"));
  dropAllPhotosInto(m_tree.path("out"));
  m_delegate->window()->close();
  EXPECT_TRUE(m_delegate->window()->isVisible());
  QMessageBox* box = alert();
  ASSERT_TRUE(box);
  for (QAbstractButton* button : box->buttons()) {
    if (button->text() == "Stop and Quit") {
      button->click();
    }
  }
  EXPECT_TRUE(QTest::qWaitFor([&] { return !m_delegate->window()->isVisible(); }));
  for (const std::string& name : m_tree.list("out")) {
    EXPECT_EQ(m_tree.read("out/" + name), m_picture) << name;
  }
}

}  // namespace
}  // namespace snaplift
