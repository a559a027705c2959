#include "widgets/desktop/Workspace.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFile>
#include <QStringList>
#include <QUrl>

namespace snaplift {
namespace {

// More would be a message that no bus takes.
constexpr std::size_t mostSelectedFiles = 1000;

QUrl urlOf(const std::string& path) {
  return QUrl::fromLocalFile(QFile::decodeName(path.c_str()));
}

void askFileManager(const char* method, const std::vector<std::string>& paths,
                    const std::string& folder) {
  QDBusMessage call = QDBusMessage::createMethodCall("org.freedesktop.FileManager1",
                                                     "/org/freedesktop/FileManager1",
                                                     "org.freedesktop.FileManager1", method);
  QStringList urls;
  for (const std::string& path : paths) {
    urls << urlOf(path).toString(QUrl::FullyEncoded);
  }
  call << urls << QString();
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {  // a watcher would never be called back
    QDesktopServices::openUrl(urlOf(folder));
    return;
  }
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, folder] {
    if (watcher->isError()) {
      QDesktopServices::openUrl(urlOf(folder));
    }
    watcher->deleteLater();
  });
}

}  // namespace

void openFolderInFileManager(const std::string& folder) {
  askFileManager("ShowFolders", {folder}, folder);
}

void showFilesInFileManager(const std::string& folder, const std::vector<std::string>& files) {
  if (files.empty() || files.size() > mostSelectedFiles) {
    openFolderInFileManager(folder);
  } else {
    askFileManager("ShowItems", files, folder);
  }
}

bool openFileInItsProgram(const std::string& path) {
  return QDesktopServices::openUrl(urlOf(path));
}

}  // namespace snaplift
