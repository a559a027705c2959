// The folders that are open besides the backup root: every way in, and out again.

#include <QDropEvent>
#include <QFileDialog>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSplitter>
#include <QUrl>
#include <filesystem>

#include "SLAppDelegateFixture.h"
#include "app/CommandLine.h"

namespace snaplift {
namespace {

class OpenFoldersTest : public SLAppDelegateTest {
protected:
  OpenFoldersTest() {
    qputenv("XDG_CONFIG_HOME", QByteArray::fromStdString(m_tree.path("config")));
    qputenv("XDG_STATE_HOME", QByteArray::fromStdString(m_tree.path("state")));
  }

  bool waitForRows(int rows) {
    return QTest::qWaitFor([&] { return sourceList().numberOfRows() == rows; });
  }
  QWidget& searchBar() { return child<QWidget>("searchBar"); }
  bool waitForTheEndOfTheSearch() {
    return QTest::qWaitFor([&] { return !searchBar().isVisible(); });
  }
  bool isEmpty() { return child<QWidget>("emptyView").isVisible(); }

  bool drop(const std::vector<std::string>& paths) {
    QMimeData data;
    QList<QUrl> urls;
    for (const std::string& path : paths) {
      urls << QUrl::fromLocalFile(QString::fromStdString(path));
    }
    data.setUrls(urls);
    const Qt::DropActions actions = Qt::CopyAction | Qt::LinkAction;
    QDragEnterEvent enter({}, actions, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(m_delegate->window(), &enter);
    if (!enter.isAccepted()) {
      return false;
    }
    QDropEvent dropped({}, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_delegate->window(), &dropped);
    return dropped.isAccepted();
  }

  QStringList recent() {
    auto& menu = child<QMenu>("menuOpenRecent");
    emit menu.aboutToShow();
    QStringList names;
    for (const QAction* action : menu.actions()) {
      names << action->text();
    }
    return names;
  }
};

TEST_F(OpenFoldersTest, addsTheBackupsOfAFolderToThoseOfTheRootAndShowsThem) {
  addBackup("a", 3, 100);
  const std::string b = addBackup("b", 5, 50, false, "disk/old/");
  launch({m_tree.path("disk")});
  EXPECT_TRUE(waitForText("5 Photos"));
  EXPECT_EQ(sourceList().numberOfRows(), 3);
  EXPECT_TRUE(waitForTheEndOfTheSearch());
  m_delegate->openFolder(b + "/Info.plist");  // there already
  EXPECT_TRUE(waitForTheEndOfTheSearch());
  EXPECT_EQ(sourceList().numberOfRows(), 3);
  EXPECT_FALSE(m_delegate->window()->findChild<QMessageBox*>());
  select(1);
  EXPECT_TRUE(waitForText("3 Photos"));
}

// What is shown and selected stays while others come and go.
TEST_F(OpenFoldersTest, keepsWhatIsInUse) {
  addBackup("a", 3, 100);
  addBackup("newer", 5, 900, false, "disk/");
  launch();
  ASSERT_TRUE(waitForText("3 Photos"));
  ASSERT_TRUE(drop({m_tree.path("disk")}));
  ASSERT_TRUE(waitForText("5 Photos"));
  const ImageBrowserItemPointer used = browser().itemAtIndex(0);
  action("actionCloseFolder").trigger();
  EXPECT_EQ(sourceList().numberOfRows(), 2);
  EXPECT_TRUE(waitForText("3 Photos"));
  EXPECT_EQ(textOf(used->imageRepresentation().value_or(Bytes())), m_picture);
  action("actionCloseFolder").trigger();  // the root's
  EXPECT_EQ(sourceList().numberOfRows(), 0);
  EXPECT_TRUE(isEmpty());
  EXPECT_EQ(centreText(), "No Photos");
  EXPECT_EQ(browser().itemCount(), 0);
  EXPECT_FALSE(action("actionExportAll").isEnabled());
  EXPECT_FALSE(action("actionCloseFolder").isEnabled());
  child<QPushButton>("chooseFolderButton").click();
  EXPECT_TRUE(m_delegate->window()->findChild<QFileDialog*>());
}

TEST_F(OpenFoldersTest, answersAFolderWithoutBackupsByItsName) {
  addBackup("a", 3, 100);
  m_tree.makeFolder("nothing <b>here");
  launch({m_tree.path("nothing <b>here"), m_tree.path("gone")});
  QMessageBox* box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "No Backups Found in “nothing <b>here”");
  EXPECT_TRUE(box->informativeText().contains("Info.plist"));
  answer(box, "Ok");
  box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "“gone” Cannot Be Opened");
  EXPECT_TRUE(box->informativeText().startsWith("no such folder"));
  EXPECT_EQ(recent(), QStringList({"", "&Clear List"}));
}

// As of a disk that is taken out; and a newer backup that is found later comes to the front.
TEST_F(OpenFoldersTest, tellsOnceThatTheDiskOfWhatIsShownHasGone) {
  addBackup("a", 3, 100, false, "disk/");
  addBackup("b", 5, 900, false, "disk/deeper/");
  launch({m_tree.path("disk")});
  ASSERT_TRUE(waitForText("5 Photos"));
  ASSERT_TRUE(waitForTheEndOfTheSearch());
  const ImageBrowserItemPointer photo = browser().itemAtIndex(0);
  std::filesystem::rename(m_tree.path("disk"), m_tree.path("away"));
  EXPECT_FALSE(photo->imageBeginning(1));  // which a tile asks for first
  QMessageBox* box = alert();
  ASSERT_TRUE(box);
  EXPECT_EQ(box->text(), "“disk” Can No Longer Be Read");
  answer(box, "Ok");
  EXPECT_FALSE(photo->imageRepresentation());
  select(2);  // it cannot be loaded any more
  ASSERT_TRUE(waitForText("No Photos"));
  std::filesystem::rename(m_tree.path("away"), m_tree.path("disk"));
  emit m_delegate->findChild<DiskWatch*>()->disksChanged();
  EXPECT_TRUE(waitForText("5 Photos"));
  EXPECT_FALSE(m_delegate->window()->findChild<QMessageBox*>());
}

TEST_F(OpenFoldersTest, takesDropsOfFoldersOnly) {
  addBackup("a", 3, 100);
  const std::string b = addBackup("b", 5, 50, false, "disk/");
  const std::string file = m_tree.write("file", "");
  launch();
  ASSERT_TRUE(waitForText("3 Photos"));
  EXPECT_FALSE(drop({}));
  EXPECT_FALSE(drop({file}));
  EXPECT_FALSE(drop({b, file}));
  EXPECT_TRUE(drop({b + "/Manifest.plist"}));
  EXPECT_TRUE(waitForText("5 Photos"));
}

TEST_F(OpenFoldersTest, remembersItsFoldersAndPlace) {
  addBackup("b", 5, 50, false, "disk \xc3\xa4/");
  addBackup("c", 2, 40, false, "gone/");
  const std::string disk = m_tree.path("disk \xc3\xa4");
  launch({disk, m_tree.path("gone")}, true);
  ASSERT_TRUE(waitForRows(3));
  ASSERT_TRUE(waitForTheEndOfTheSearch());
  m_delegate->window()->resize(700, 455);
  auto& divider = child<QSplitter>("splitView");
  divider.setSizes({250, 450});
  const QList<int> sizes = divider.sizes();
  ASSERT_TRUE(waitForText("2 Photos"));
  dropAllPhotosInto("out");
  const auto exported = [&] { return m_tree.list("out").size(); };
  ASSERT_TRUE(QTest::qWaitFor([&] { return centreText() == "2 Photos"; }, 60000));
  EXPECT_EQ(recent().first(2), QStringList({QString::fromStdString(m_tree.path("gone")),
                                            QString::fromStdString(disk)}));
  for (const char* setting : {"actionSkipExisting", "actionKeepDates", "actionLayoutMonth"}) {
    action(setting).trigger();
  }
  m_delegate->window()->close();
  std::filesystem::remove_all(m_tree.path("gone"));
  m_tree.write("out/.snaplift-0123456789abcdef.part", "left by a kill");
  launch();
  m_delegate.reset();
  EXPECT_EQ(exported(), 3U);

  launch({}, true);
  EXPECT_TRUE(QTest::qWaitFor([&] { return exported() == 2; }));
  EXPECT_TRUE(waitForText("5 Photos"));
  EXPECT_TRUE(waitForTheEndOfTheSearch());
  EXPECT_EQ(m_delegate->window()->size(), QSize(700, 455));
  EXPECT_EQ(child<QSplitter>("splitView").sizes(), sizes);
  EXPECT_FALSE(m_delegate->window()->findChild<QMessageBox*>());  // not of what is gone
  EXPECT_TRUE(action("actionSkipExisting").isChecked());
  EXPECT_FALSE(action("actionKeepDates").isChecked());
  EXPECT_TRUE(action("actionLayoutMonth").isChecked());
  EXPECT_EQ(m_tree.list("config"),
            std::vector<std::string>({"snaplift", "snaplift/export.ini", "snaplift/folders.ini"}));
  EXPECT_EQ(m_tree.list("state"), std::vector<std::string>({"snaplift", "snaplift/window.ini"}));
  EXPECT_EQ(recent().size(), 4);
  action("actionCloseFolder").trigger();
  m_delegate->openFolder(disk);
  ASSERT_TRUE(waitForText("5 Photos"));
  EXPECT_EQ(recent().size(), 4);  // no folder twice
  child<QMenu>("menuOpenRecent").actions().back()->trigger();
  EXPECT_EQ(recent(), QStringList({"", "&Clear List"}));

  std::filesystem::remove_all(m_tree.path("config"));
  std::filesystem::remove_all(m_tree.path("state"));
  launch({disk}, false);
  EXPECT_TRUE(waitForText("5 Photos"));
  m_delegate->window()->close();
  EXPECT_FALSE(std::filesystem::exists(m_tree.path("config")));
  EXPECT_FALSE(std::filesystem::exists(m_tree.path("state")));
}

TEST(CommandLine, isAnsweredBeforeThereIsADisplay) {
  struct Case {
    std::vector<std::string> arguments;
    int status;  // -1: no answer
    const char* text;
  };
  for (const Case& c :
       {Case{{}, -1, ""}, Case{{"--help"}, 0, "usage: snaplift"},
        Case{{"/disk", "-h"}, 0, "usage: snaplift"},
        Case{{"--version"}, 0, "snaplift " SNAPLIFT_VERSION},
        Case{{"--colour"}, 2, "unknown option: --colour"}, Case{{"-x"}, 2, "unknown option: -x"},
        Case{{"-platform", "offscreen", "--style=Fusion", "-"}, -1, ""},
        Case{{"--no-state", "--", "--help"}, -1, ""}}) {
    const auto answer = answerOfCommandLine(c.arguments);
    EXPECT_EQ(answer ? answer->status : -1, c.status);
    EXPECT_TRUE(QString::fromStdString(answer ? answer->text : "").contains(c.text));
  }
  const WindowArguments window = windowArguments({"a", "--no-state", "--", "--help", "\xff"});
  EXPECT_EQ(window.folders, std::vector<std::string>({"a", "--help", "\xff"}));
  EXPECT_FALSE(window.keepsState);
  EXPECT_TRUE(windowArguments({}).keepsState);
}

}  // namespace
}  // namespace snaplift
