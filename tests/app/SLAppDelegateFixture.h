#pragma once

#include <QAction>
#include <QBuffer>
#include <QImage>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QStackedWidget>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/SLAppDelegate.h"
#include "foundation/Log.h"
#include "samples/BackupWriter.h"
#include "support/TemporaryTree.h"
#include "toolkit/MainThread.h"

namespace snaplift {

inline std::string encodedPicture() {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QImage image(32, 24, QImage::Format_RGB32);
  image.fill(Qt::darkGreen);
  image.save(&buffer, "PNG");
  return bytes.toStdString();
}

// The window on backups of its own making.
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

  const std::string m_picture = encodedPicture();
  TemporaryTree m_tree;
  LogCapture m_quietLog{[](const std::string&) {}};
  std::unique_ptr<SLAppDelegate> m_delegate;
};

}  // namespace snaplift
