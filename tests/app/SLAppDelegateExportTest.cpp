#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QMimeData>
#include <QPointer>
#include <QTimer>
#include <QTreeWidget>
#include <atomic>
#include <filesystem>
#include <list>

#include <gmock/gmock.h>

#include "SLAppDelegateFixture.h"
#include "app/export/EverythingToExport.h"
#include "app/export/ExportNotice.h"
#include "app/export/ExportProgressBar.h"
#include "app/export/NumberedTwins.h"
#include "faults/Volume.h"
#include "support/PhotoSource.h"
#include "widgets/desktop/ActivityIndicator.h"
#include "widgets/desktop/NoticeBar.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

class PathsAsPhotos : public ImageDataSource {
public:
  std::optional<Bytes> imageDataForPath(const std::string& path, Bytes) const override {
    return Bytes::copyOf(bytesOf(path));
  }
};

TEST_F(SLAppDelegateTest, exportsIntoAFolderAndCountsDown) {
  launchWith(40);
  action("actionSelectAll").trigger();
  EXPECT_TRUE(action("actionCopy").isEnabled());
  const auto names = dropAllPhotosInto("out");
  ASSERT_TRUE(names);
  EXPECT_EQ(names->size(), 40U);
  EXPECT_EQ(names->front(), "IMG_0001.PNG");
  EXPECT_TRUE(centreText().startsWith("Exporting: ")) << centreText().toStdString();
  EXPECT_TRUE(child<ActivityIndicator>("exportSpinner").isAnimating());
  EXPECT_FALSE(action("actionCopy").isEnabled());  // a photo is extracted once at a time
  EXPECT_TRUE(waitForText("40 of 40 Photos Selected"));
  EXPECT_TRUE(action("actionCopy").isEnabled());
  EXPECT_FALSE(child<ActivityIndicator>("exportSpinner").isAnimating());
  EXPECT_EQ(m_tree.list("out").size(), 40U);
  EXPECT_EQ(m_tree.read("out/IMG_0040.PNG"), m_picture);
}

TEST(TransferRate, followsTheLastSeconds) {
  TransferRate rate;
  const TransferRate::Time start;
  using std::chrono::seconds;
  rate.update(start, 1000);
  EXPECT_FALSE(rate.perSecond());
  rate.update(start + std::chrono::milliseconds(10), 2000);
  EXPECT_FALSE(rate.perSecond());  // too early to say
  rate.update(start + seconds(10), 11'000);
  EXPECT_DOUBLE_EQ(rate.perSecond().value_or(0), 1000);
  rate.update(start + seconds(40), 11'000);
  EXPECT_LT(rate.perSecond().value_or(1000), 10);

  EXPECT_EQ(timeLeftText(59), "less than a minute left");
  EXPECT_EQ(timeLeftText(61), "about 1 minute left");
  EXPECT_EQ(timeLeftText(600), "about 10 minutes left");
  EXPECT_EQ(timeLeftText(2 * 3600), "about 2 hours left");
  EXPECT_EQ(timeLeftText(1e300), "more than 99 hours left");
}

class ExportNoticeTest : public SLAppDelegateTest {
protected:
  // An export ends when its disk has all of it: on a busy machine that takes long.
  static constexpr int patienceInMilliseconds = 60000;

  NoticeBar& notice() { return child<NoticeBar>("exportNotice"); }
  QString noticeText() { return notice().isVisible() ? notice().accessibleName() : QString(); }
  bool waitForNotice(const QString& expected) {
    return QTest::qWaitFor([&] { return noticeText() == expected; }, patienceInMilliseconds);
  }
  // The button of that name in a widget; null where there is none.
  static QAbstractButton* button(const QWidget& widget, const QString& text) {
    for (auto* button : widget.findChildren<QAbstractButton*>()) {
      if (button->text() == text && button->isVisible()) {
        return button;
      }
    }
    return nullptr;
  }
};

TEST_F(ExportNoticeTest, tellsWhatArrivedAndRetriesWhatDidNot) {
  const std::string folder = launchWith(9);
  fs::rename(contentOf(folder, 2), m_tree.path("2"));
  fs::remove(contentOf(folder, 3));
  fs::create_directory(contentOf(folder, 3));
  dropAllPhotosInto("out");
  ASSERT_TRUE(waitForNotice("7 photos exported to out, 2 failed"));
  EXPECT_TRUE(button(notice(), "Show"));
  EXPECT_EQ(m_tree.list("out").size(), 7U);

  button(notice(), "Details...")->click();
  auto* details = m_delegate->window()->findChild<QTreeWidget*>();
  ASSERT_TRUE(details);
  ASSERT_EQ(details->topLevelItemCount(), 2);
  const QStringList reasons = {details->topLevelItem(0)->text(1),
                               details->topLevelItem(1)->text(1)};
  EXPECT_EQ(details->topLevelItem(0)->text(0), "IMG_0002.PNG");
  EXPECT_NE(reasons[0], reasons[1]);
  details->sortByColumn(0, Qt::DescendingOrder);
  EXPECT_EQ(details->topLevelItem(0)->text(0), "IMG_0003.PNG");
  details->window()->close();

  fs::rename(m_tree.path("2"), contentOf(folder, 2));
  button(notice(), "Retry Failed")->click();
  ASSERT_TRUE(waitForNotice("8 photos exported to out, 1 failed"));
  EXPECT_EQ(m_tree.read("out/IMG_0002.PNG"), m_picture);

  QAbstractButton* save = nullptr;
  ASSERT_TRUE(QTest::qWaitFor([&] { return (save = button(notice(), "Save Report...")); }));
  save->click();
  auto* chooser = m_delegate->window()->findChild<QFileDialog*>();
  ASSERT_TRUE(chooser);
  emit chooser->fileSelected(QString::fromStdString(joinPath(folder, "report.csv")));
  chooser->close();
  QMessageBox* box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "The Report Could Not Be Saved");
  EXPECT_FALSE(fs::exists(joinPath(folder, "report.csv")));
  answer(box, "Ok");

  m_delegate->window()->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(m_delegate->window()));
  QTest::keyClick(&browser(), Qt::Key_Escape);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !notice().isVisible(); }));
}

// Those that were not begun are left out where somebody stopped, not where the disk was lost.
TEST_F(ExportNoticeTest, retriesWhatWasNotBegunBecauseTheDiskWasLost) {
  const PathsAsPhotos source;
  const ImageItem photo("a.jpg", source);
  ExportReport report;
  report.missing = {{&photo}, {&photo}, {&photo}};
  report.failures.resize(1);
  report.failures[0].photo = &photo;
  ExportNotice notice;
  std::vector<std::size_t> wanted;
  QObject::connect(&notice, &ExportNotice::retryWanted,
                   [&](const ExportReport&, std::size_t photos) { wanted.push_back(photos); });
  for (const auto& lost : {std::optional<FileError>(), std::optional(FileError::missing("out"))}) {
    report.summary.lost = lost;
    notice.tellOf(report);
    button(notice, "Retry Failed")->click();
  }
  EXPECT_EQ(wanted, std::vector<std::size_t>({1, WindowExports::allPhotos}));
}

TEST_F(ExportNoticeTest, beginsTheChoiceWhereTheLastExportWentAndLeavesOutWhatIsThere) {
  const std::string home = m_tree.makeFolder("home");  // without pictures
  qputenv("HOME", QByteArray::fromStdString(home));
  launchWith(1);
  const QString out = QString::fromStdString(m_tree.makeFolder("out"));
  for (const auto& [start, result] :
       {std::pair{QString::fromStdString(home), "1 photo exported to out"},
        std::pair{out, "0 photos exported to out, 1 there already"}}) {
    action("actionExportAll").trigger();
    QPointer dialog = m_delegate->window()->findChild<QFileDialog*>();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->directory().path(), start);
    emit dialog->fileSelected(out);
    dialog->close();
    ASSERT_TRUE(waitForNotice(result));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !dialog; }));
    action("actionSkipExisting").trigger();
  }
}

TEST(NumberedTwins, countWhereTheyAreMoreThanHalf) {
  const TemporaryTree tree;
  const PathsAsPhotos backup;
  const ImageItem photo("/a/IMG.JPG", backup);
  tree.write("IMG.JPG", "one");
  const ExportedPhoto twin{
      .photo = &photo, .written = tree.write("IMG 1.JPG", "one"), .isRenamed = true, .error = {}};
  const ExportedPhoto other{
      .photo = &photo, .written = tree.write("IMG 2.JPG", "two"), .isRenamed = true, .error = {}};
  EXPECT_TRUE(areMostlyTwins({twin, other, twin}, {}));
  EXPECT_FALSE(areMostlyTwins({twin, other}, {}));
  ExportedPhoto skipped = twin;
  skipped.isSkipped = true;
  EXPECT_FALSE(areMostlyTwins({twin, skipped, other}, {}));
}

// Photos of seven bytes each, as the source says; one in the folder `files` has more.
class SizedPhotos : public test::PhotoSource {
public:
  using PhotoSource::PhotoSource;
  std::optional<PhotoInfo> photoInfo(std::size_t) const override {
    PhotoInfo info;
    info.size = 7;
    return info;
  }
};

class WindowExportsTest : public testing::Test {
protected:
  WindowExportsTest() {
    QObject::connect(&m_exports, &WindowExports::ended,
                     [this](const ExportReport& report) { m_ended.push_back(report); });
  }
  ExportReport reportOf(const std::vector<std::string>& paths) {
    ExportReport report;
    report.destination = m_tree.makeFolder("out");
    for (const std::string& path : paths) {
      report.missing.push_back({&m_items.emplace_back(path, m_photos)});
    }
    return report;
  }
  bool waitForEnds(std::size_t count) {
    return QTest::qWaitFor([&] { return m_ended.size() == count; }, 60000);
  }

  TemporaryTree m_tree;
  SizedPhotos m_photos{m_tree.root()};
  std::list<ImageItem> m_items;
  std::vector<ExportReport> m_ended;
  WindowExports m_exports;
};

TEST_F(WindowExportsTest, addUpWhatSeveralAttemptsBrought) {
  m_exports.begin(reportOf({"1/a.jpg", "2/a.jpg", "files/b.jpg", "3/a.jpg"}), 3);
  ASSERT_TRUE(waitForEnds(1));
  const ExportReport& first = m_ended[0];
  EXPECT_EQ(first.summary.photos, 4U);
  EXPECT_EQ(first.summary.exported, 2U);
  EXPECT_EQ(first.summary.failed, 1U);
  EXPECT_EQ(first.summary.notBegun, 1U);
  ASSERT_EQ(first.missing.size(), 2U);
  EXPECT_EQ(first.missing[0].photo->path(), "files/b.jpg");  // before those that were not begun
  EXPECT_FALSE(first.missing[0].mayBeThere);                 // it could not be read
  m_tree.write("files/b.jpg", "files/b.jpg");
  m_exports.begin(ExportReport(first));
  ASSERT_TRUE(waitForEnds(2));
  const ExportReport& all = m_ended[1];
  EXPECT_EQ(all.summary.photos, 4U);
  EXPECT_EQ(all.summary.exported, 4U);
  EXPECT_EQ(all.summary.renamed, 2U);
  EXPECT_EQ(all.summary.shortened, 1U);
  EXPECT_EQ(all.summary.bytes, 3 * 7U + 11);
  EXPECT_EQ(all.summary.failed + all.summary.notBegun, 0U);
  EXPECT_THAT(all.missing, IsEmpty());
  EXPECT_THAT(all.failures, IsEmpty());
  EXPECT_EQ(all.arrived.size(), 4U);
}

TEST_F(WindowExportsTest, countWhatHasEndedWhileOthersGoOn) {
  std::atomic<bool> isHeld = true;
  m_photos.onRead = [&](const std::string& path) { isHeld.wait(path == "held/a"); };
  m_exports.begin(reportOf({"held/a"}));
  m_exports.begin(reportOf({"1/b.jpg", "2/b.jpg"}));
  EXPECT_TRUE(waitForEnds(1));
  EXPECT_TRUE(QTest::qWaitFor([&] { return m_exports.progress().bytes == 3 * 7; }));
  EXPECT_EQ(m_exports.progress().photos, 3U);
  EXPECT_EQ(m_exports.progress().photosEnded, 2U);
  EXPECT_EQ(m_exports.progress().bytesEnded, 2 * 7U);
  isHeld = false;
  isHeld.notify_all();
  EXPECT_TRUE(waitForEnds(2));
  EXPECT_EQ(m_exports.progress().photos, 0U);  // the next begins anew
}

TEST(EverythingToExport, knowsTheFolderOfEachPhoto) {
  mainThread::resume();
  const TemporaryTree tree;
  const LogCapture quietLog([](const std::string&) {});
  for (const char* name : {"a", "b"}) {
    samples::SampleBackup backup{.deviceName = name, .productVersion = "5.0"};
    for (const char* photo : {"1.JPG", "2.JPG"}) {
      backup.files.push_back({.domain = "CameraRollDomain", .path = photo, .content = "four"});
    }
    samples::writeBackup(tree.path(name), backup);
  }
  BackupController controller(tree.root());
  EverythingToExport everything(ExportLayout::Device);
  for (const auto& device : controller.devices()) {
    everything.add(*device);
  }
  std::vector<std::string> folders;
  QObject::connect(&everything, &EverythingToExport::collected, [&](const ExportReport& photos) {
    for (const PhotoToExport& photo : photos.missing) {
      folders.push_back(photo.folder);
    }
  });
  everything.start();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !folders.empty(); }));
  EXPECT_THAT(folders, testing::UnorderedElementsAre("a", "a", "b", "b"));
}

TEST_F(ExportNoticeTest, offersToSkipWhatWasThereAlready) {
  launchWith(3);
  dropAllPhotosInto("out");
  ASSERT_TRUE(waitForNotice("3 photos exported to out"));
  dropAllPhotosInto("out");
  ASSERT_TRUE(waitForNotice(
      "3 photos exported to out. More than half of them were there already, with the same bytes"));
  EXPECT_FALSE(action("actionSkipExisting").isChecked());
  QAbstractButton* skip = nullptr;
  ASSERT_TRUE(QTest::qWaitFor(
      [&] { return (skip = button(notice(), "Skip Them From Now On")) != nullptr; }));
  skip->click();
  EXPECT_TRUE(action("actionSkipExisting").isChecked());
  dropAllPhotosInto("out");
  ASSERT_TRUE(waitForNotice("0 photos exported to out, 3 there already"));
}

TEST_F(ExportNoticeTest, exportsEverythingAndNamesWhatCannotBe) {
  qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(m_tree.path("config")));
  addBackup("empty", 0, 500);
  addBackup("a", 2, 400);
  addBackup("b", 3, 300);
  addBackup("c", 1, 200, true);
  addBackup("d", 1, 100);
  m_tree.write("root/d/Manifest.mbdb", "no manifest");
  launch();
  const QString shown = "No Photos Found in This Backup";
  ASSERT_TRUE(QTest::qWaitFor([&] { return text() == shown; }));
  action("actionLayoutDevice").trigger();
  action("actionExportEverything").trigger();
  EXPECT_FALSE(fs::exists(m_tree.path("config")));  // nothing is to be remembered
  emit m_delegate->window()->findChild<QFileDialog*>()->fileSelected(
      QString::fromStdString(m_tree.makeFolder("out")));
  ASSERT_TRUE(QTest::qWaitFor([&] { return notice().isVisible(); }, patienceInMilliseconds));
  EXPECT_THAT(noticeText().toStdString(),
              testing::MatchesRegex("5 photos exported to out. Encrypted, so nothing was exported "
                                    "from: Anna's Phone, .*. Damaged, so photos may be "
                                    "missing: Anna's Phone, .*"));
  EXPECT_EQ(m_tree.list("out/Anna's Phone").size(), 5U);
  EXPECT_FALSE(m_delegate->window()->findChild<QMessageBox*>());
  EXPECT_EQ(text(), shown);
}

TEST_F(ExportNoticeTest, stopsWhenAskedTo) {
  launchWith(1000);
  auto& progress = child<ExportProgressBar>("exportProgress");
  EXPECT_FALSE(progress.isVisible());
  dropAllPhotosInto("out");
  ASSERT_TRUE(progress.isVisible());
  EXPECT_TRUE(progress.findChild<QLabel*>()->text().contains(" of 1000"));
  button(progress, "&Stop")->click();
  ASSERT_TRUE(QTest::qWaitFor([&] { return notice().isVisible(); }, patienceInMilliseconds));
  const auto there = static_cast<int>(m_tree.list("out").size());
  EXPECT_LT(there, 1000);
  EXPECT_EQ(noticeText(), QString("%1 exported to out, %2 not begun")
                              .arg(there == 1 ? "1 photo" : QString("%1 photos").arg(there))
                              .arg(1000 - there));
  EXPECT_FALSE(progress.isVisible());
}

TEST_F(SLAppDelegateTest, exportsNothingIntoABackup) {
  launchWith(2);
  const auto before = m_tree.list("root");
  EXPECT_THAT(*dropAllPhotosInto("root/a"), IsEmpty());
  EXPECT_TRUE(alert());
  EXPECT_EQ(m_tree.list("root"), before);
}

TEST_F(SLAppDelegateTest, promisesPhotosOnThePasteboard) {
  launchWith(3);
  action("actionSelectAll").trigger();
  action("actionCopy").trigger();
  const QMimeData* several = QApplication::clipboard()->mimeData();
  EXPECT_EQ(several->formats(), QStringList({"text/uri-list", "x-special/gnome-copied-files"}));
  const QByteArray urls = several->data("text/uri-list");
  EXPECT_EQ(urls.count("\r\n"), 3);
  EXPECT_TRUE(several->data("x-special/gnome-copied-files").startsWith("copy\nfile:///"));

  browser().stepTo(1);
  action("actionCopy").trigger();
  EXPECT_EQ(QApplication::clipboard()->mimeData()->data("image/png").toStdString(), m_picture);
  QApplication::clipboard()->clear();
}

// A target that is told the paths early finds the photos there, however many fail.
TEST(TemporaryPhotos, areExportedOnceToPathsThatWereToldBefore) {
  test::PhotoSource source;
  std::atomic<int> reads = 0;
  source.onRead = [&reads](const std::string&) { ++reads; };
  std::list<ImageItem> items;
  std::vector<ImageItem*> photos;
  std::vector<std::string> readable;
  for (int i = 0; i < 60; ++i) {
    const bool isLost = i == 0 || i == 30;
    const std::string path = std::to_string(i) + (isLost ? "/lost/a.jpg" : "/a.jpg");
    photos.push_back(&items.emplace_back(path, source));
    if (!isLost) {
      readable.push_back(path);
    }
  }
  std::vector<std::string> failed;
  TemporaryPhotos list(photos, [&failed](const std::vector<ExportedPhoto>& failures) {
    for (const ExportedPhoto& failure : failures) {
      failed.push_back(failure.photo->path());
    }
  });
  const std::vector<std::string> told = list.paths();
  EXPECT_EQ(told.size(), 60U);
  EXPECT_TRUE(told[1].ends_with("/a 1.jpg"));
  EXPECT_EQ(reads, 0);
  bool loopRan = false;
  QTimer::singleShot(0, [&loopRan] { loopRan = true; });
  list.write();
  list.write();
  EXPECT_TRUE(loopRan);
  EXPECT_EQ(reads, 60);
  EXPECT_EQ(failed, std::vector<std::string>({"0/lost/a.jpg", "30/lost/a.jpg"}));
  std::vector<std::string> contents;
  for (const std::string& path : list.paths()) {
    EXPECT_THAT(told, testing::Contains(path));
    QFile file(QString::fromStdString(path));
    contents.push_back(file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "none");
  }
  EXPECT_EQ(contents, readable);
}

TEST_F(ExportNoticeTest, asksBeforeItFillsTheDiskAndGoesOnWhenThereIsRoom) {
  const std::string out = m_tree.makeFolder("out");
  const auto volume = Volume::inMemory(out, 65536);
  if (!volume) {
    GTEST_SKIP() << "needs root to mount";
  }
  m_tree.write("out/filler", std::string(65536, 'x'));
  launchWith(9);
  dropAllPhotosInto("out");
  QMessageBox* box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "“out” Has Too Little Room");
  EXPECT_TRUE(box->informativeText().endsWith(", and 0 bytes are free."));
  EXPECT_EQ(centreText(), "9 Photos");
  button(*box, "Export Anyway")->click();
  ASSERT_TRUE(QTest::qWaitFor([&] {
    box = m_delegate->window()->findChild<QMessageBox*>();
    return box && box->text() == "Nothing More Can Be Written to “out”";
  }));
  fs::remove(m_tree.path("out/filler"));
  button(*box, "Retry")->click();
  ASSERT_TRUE(waitForNotice("9 photos exported to out"));

  // Nobody knows what photos need of which some are there.
  action("actionSkipExisting").trigger();
  m_tree.write("out/filler", std::string(65536 - 9 * 4096, 'x'));
  dropAllPhotosInto("out");
  ASSERT_TRUE(waitForNotice("0 photos exported to out, 9 there already"));
}

TEST_F(ExportNoticeTest, tellsThatACopyFailed) {
  const std::string folder = launchWith(3);
  fs::remove(contentOf(folder, 2));
  action("actionSelectAll").trigger();
  action("actionCopy").trigger();
  const QMimeData* copied = QApplication::clipboard()->mimeData();
  EXPECT_EQ(copied->data("text/uri-list").count("\r\n"), 2);
  static_cast<void>(copied->data("text/uri-list"));
  const QPointer box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "1 of 3 Photos Could Not Be Copied");
  EXPECT_THAT(box->informativeText().toStdString(), testing::HasSubstr("\nIMG_0002.PNG: "));
  EXPECT_EQ(m_delegate->window()->findChildren<QMessageBox*>().size(), 1);
  box->buttons().front()->click();
  QApplication::clipboard()->clear();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !box; }));

  browser().stepTo(1);
  action("actionCopy").trigger();
  for (int i = 0; i < 2; ++i) {  // whoever gets nothing may ask again
    EXPECT_TRUE(QApplication::clipboard()->mimeData()->data("image/png").isEmpty());
  }
  const QPointer single = alert();
  ASSERT_TRUE(single);
  EXPECT_EQ(m_delegate->window()->findChildren<QMessageBox*>().size(), 1);
  single->buttons().front()->click();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !single; }));

  const auto dragged = m_delegate->imageBrowserFilesOfItems(browser(), allItems());
  dragged->write();
  EXPECT_EQ(dragged->paths().size(), 2U);
  EXPECT_EQ(alert()->text(), "1 of 3 Photos Could Not Be Copied");
}

TEST_F(ExportNoticeTest, asksBeforeItStopsExportingAndNoLonger) {
  launchWith(500);
  dropAllPhotosInto("out");
  m_delegate->window()->close();
  EXPECT_TRUE(m_delegate->window()->isVisible());
  ASSERT_TRUE(alert());
  ASSERT_TRUE(waitForNotice("500 photos exported to out"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return !m_delegate->window()->findChild<QMessageBox*>(); }));
  EXPECT_TRUE(m_delegate->window()->isVisible());

  dropAllPhotosInto("more");
  m_delegate->window()->close();
  QMessageBox* box = alert();
  ASSERT_TRUE(box);
  button(*box, "Stop and Quit")->click();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !m_delegate->window()->isVisible(); }));
  for (const std::string& name : m_tree.list("more")) {
    EXPECT_EQ(m_tree.read("more/" + name), m_picture) << name;
  }
}

}  // namespace
}  // namespace snaplift
