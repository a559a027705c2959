#pragma once

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/SLAppDelegate.h"
#include "foundation/Log.h"
#include "foundation/files/Path.h"
#include "samples/BackupWriter.h"
#include "support/TemporaryTree.h"
#include "support/photos/TestPictures.h"
#include "widgets/desktop/MainThread.h"

namespace snaplift {

// The window on backups of its own making.
class SLAppDelegateTest : public testing::Test {
protected:
  SLAppDelegateTest() { mainThread::resume(); }

  // A backup with photos IMG_0001.PNG and so on; a later date is a newer backup.
  std::string addBackup(const std::string& name, int photos, std::int64_t date,
                        bool encrypted = false, const std::string& root = "root/") {
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
    const std::string folder = m_tree.path(root + name);
    samples::writeBackup(folder, backup);
    return folder;
  }

  // The file of a photo of the backup that addBackup() made in `folder`.
  static std::string contentOf(const std::string& folder, int photo) {
    const std::string path = "Media/DCIM/100APPLE/IMG_000" + std::to_string(photo) + ".PNG";
    return joinPath(folder, samples::contentName("CameraRollDomain", path));
  }

  void launch(const std::vector<std::string>& folders = {}, bool keepsState = false) {
    m_delegate.reset();
    mainThread::resume();
    m_delegate = std::make_unique<SLAppDelegate>();
    m_delegate->applicationDidFinishLaunching(m_tree.path("root"), folders, keepsState);
  }

  // The window on one backup, whose photos are shown; returns the backup's folder.
  std::string launchWith(int photos) {
    const std::string folder = addBackup("a", photos, 100);
    launch();
    EXPECT_TRUE(QTest::qWaitFor([&] { return browser().itemCount() == photos; }));
    return folder;
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

  QMenu* contextMenu(int row, Qt::MouseButton button = Qt::RightButton,
                     Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(), QPointF(), button, button, modifiers);
    return m_delegate->sourceListMenuForEventItem(sourceList(), press, sourceList().itemAtRow(row))
        .value_or(nullptr);
  }

  // Clicks a button of the alert that is up; the alert is gone then.
  void answer(QMessageBox* box, const QString& button) {
    for (QAbstractButton* each : box->buttons()) {
      if (each->text() == button) {
        const QPointer<QMessageBox> shown(box);
        each->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !shown; }));
        return;
      }
    }
    ADD_FAILURE() << "no button " << button.toStdString();
  }

  std::vector<ImageBrowserItemPointer> allItems() {
    std::vector<ImageBrowserItemPointer> items;
    for (int i = 0; i < browser().itemCount(); ++i) {
      items.push_back(browser().itemAtIndex(i));
    }
    return items;
  }
  std::optional<std::vector<std::string>> dropAllPhotosInto(const std::string& folder) {
    return m_delegate->imageBrowserExportItemsToDestination(browser(), allItems(),
                                                            m_tree.makeFolder(folder));
  }

  const std::string m_picture = test::encoded(test::quadrants({32, 24}), "png").toStdString();
  TemporaryTree m_tree;
  LogCapture m_quietLog{[](const std::string&) {}};
  std::unique_ptr<SLAppDelegate> m_delegate;
};

}  // namespace snaplift
