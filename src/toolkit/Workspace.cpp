#include "toolkit/Workspace.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFile>
#include <QStringList>
#include <QUrl>

namespace snaplift {

void openFolderInFileManager(const std::string& folder) {
  const QUrl url = QUrl::fromLocalFile(QFile::decodeName(folder.c_str()));
  QDBusMessage call = QDBusMessage::createMethodCall("org.freedesktop.FileManager1",
                                                     "/org/freedesktop/FileManager1",
                                                     "org.freedesktop.FileManager1", "ShowFolders");
  call << QStringList{url.toString(QUrl::FullyEncoded)} << QString();
  // The watcher is called back at once, with an error, where there is no session bus.
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call));
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, url] {
    if (watcher->isError()) {
      QDesktopServices::openUrl(url);
    }
    watcher->deleteLater();
  });
}

}  // namespace snaplift
