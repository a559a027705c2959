#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>
#include <filesystem>

#include <gmock/gmock.h>

#include "SLAppDelegateFixture.h"
#include "app/PhotoPasteboard.h"
#include "foundation/Path.h"
#include "toolkit/ActivityIndicator.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

TEST_F(SLAppDelegateTest, exportsIntoAFolderAndCountsDown) {
  addBackup("a", 40, 100);
  const std::string out = m_tree.makeFolder("out");
  launch();
  ASSERT_TRUE(waitForText("40 Photos"));
  action("actionSelectAll").trigger();
  EXPECT_TRUE(action("actionCopy").isEnabled());
  const auto names = dropAllPhotosInto(out);
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

TEST_F(SLAppDelegateTest, saysWhichPhotosWereNotExported) {
  const std::string folder = addBackup("a", 9, 100);
  const std::string out = m_tree.makeFolder("out");
  launch();
  ASSERT_TRUE(waitForText("9 Photos"));
  const auto lose = [&](int photo) {
    const std::string path = "Media/DCIM/100APPLE/IMG_000" + std::to_string(photo) + ".PNG";
    fs::remove(joinPath(folder, samples::contentName("CameraRollDomain", path)));
  };
  lose(2);
  dropAllPhotosInto(out);
  QMessageBox* box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "1 of 9 Photos Could Not Be Exported");
  EXPECT_EQ(box->informativeText(),
            "The backup is unchanged.\n\nIMG_0002.PNG: the file cannot be read");
  EXPECT_EQ(m_tree.list("out").size(), 8U);
  box->buttons().front()->click();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !m_delegate->window()->findChild<QMessageBox*>(); }));

  for (int photo = 3; photo <= 8; ++photo) {
    lose(photo);
  }
  dropAllPhotosInto(out);
  box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "7 of 9 Photos Could Not Be Exported");
  EXPECT_EQ(box->informativeText().count(": the file cannot be read\n"), 5);
  EXPECT_TRUE(box->informativeText().endsWith("\nand 2 more"));
  EXPECT_TRUE(waitForText("9 Photos"));
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

// The temporary folder has room for one photo of a name.
TEST_F(SLAppDelegateTest, promisesPhotosOfOneNameFromTwoFolders) {
  class Contents : public ImageDataSource {
  public:
    std::optional<Bytes> imageDataForPath(const std::string& path, Bytes) const override {
      return Bytes::copyOf(bytesOf(path));
    }
  } contents;
  ImageItem first("/a/100APPLE/IMG_0001.JPG", contents);
  ImageItem second("/a/101APPLE/IMG_0001.JPG", contents);
  const PhotoPasteboard pasteboard({&first, &second});
  const QList<QUrl> urls = pasteboard.urls();
  ASSERT_EQ(urls.size(), 2);
  EXPECT_EQ(pasteboard.urls(), urls);  // each receiver asks anew
  for (const auto& [url, photo] : {std::pair{urls[0], &first}, {urls[1], &second}}) {
    QFile copied(url.toLocalFile());
    ASSERT_TRUE(copied.open(QIODevice::ReadOnly));
    EXPECT_EQ(copied.readAll().toStdString(), photo->path());
    EXPECT_EQ(url.fileName(), "IMG_0001.JPG");
  }
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
