#include "app/RememberedState.h"

#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>
#include <algorithm>

namespace snaplift {
namespace {

QString folderOfState() {
  const QByteArray state = qgetenv("XDG_STATE_HOME");
  return state.startsWith('/')
             ? QFile::decodeName(state)
             : QStandardPaths::writableLocation(QStandardPaths::HomeLocation) + "/.local/state";
}

QString windowFileName() {
  return folderOfState() + "/snaplift/window.ini";
}

QString settingsFileName(const char* name) {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/snaplift/" +
         name;
}

QString foldersFileName() {
  return settingsFileName("folders.ini");
}

QString exportFileName() {
  return settingsFileName("export.ini");
}

// In the order of ExportLayout.
const QStringList layoutNames = {"flat", "device", "month", "dcim"};
// In that of PhotoOrder.
const QStringList orderNames = {"backup", "date", "name", "size"};

}  // namespace

RememberedState::Window RememberedState::window() const {
  if (!m_keeps) {
    return {};
  }
  const QSettings file(windowFileName(), QSettings::IniFormat);
  return {file.value("geometry").toByteArray(), file.value("divider").toByteArray()};
}

void RememberedState::setWindow(const Window& window) const {
  if (m_keeps) {
    QSettings file(windowFileName(), QSettings::IniFormat);
    file.setValue("geometry", window.geometry);
    file.setValue("divider", window.divider);
  }
}

bool RememberedState::showsOtherMedia() const {
  return m_keeps && QSettings(windowFileName(), QSettings::IniFormat).value("otherMedia").toBool();
}

void RememberedState::setShowsOtherMedia(bool shows) const {
  if (m_keeps) {
    QSettings(windowFileName(), QSettings::IniFormat).setValue("otherMedia", shows);
  }
}

RememberedState::Look RememberedState::look() const {
  Look look;
  if (m_keeps) {
    const QSettings file(windowFileName(), QSettings::IniFormat);
    const auto order = orderNames.indexOf(file.value("order").toString());
    look.wishes.order = static_cast<PhotoOrder>(std::max<qsizetype>(0, order));
    look.wishes.isDescending = file.value("descending").toBool();
    look.wishes.isByMonth = file.value("byMonth").toBool();
    look.wishes.onlyOriginals = file.value("onlyOriginals").toBool();
    look.showsDates = file.value("dates").toBool();
  }
  return look;
}

void RememberedState::setLook(const Look& look) const {
  if (m_keeps) {
    QSettings file(windowFileName(), QSettings::IniFormat);
    file.setValue("order", orderNames[static_cast<qsizetype>(look.wishes.order)]);
    file.setValue("descending", look.wishes.isDescending);
    file.setValue("byMonth", look.wishes.isByMonth);
    file.setValue("onlyOriginals", look.wishes.onlyOriginals);
    file.setValue("dates", look.showsDates);
  }
}

bool RememberedState::showsInfo() const {
  return m_keeps && QSettings(windowFileName(), QSettings::IniFormat).value("info").toBool();
}

void RememberedState::setShowsInfo(bool shows) const {
  if (m_keeps) {
    QSettings(windowFileName(), QSettings::IniFormat).setValue("info", shows);
  }
}

std::vector<std::string> RememberedState::recentFolders() const {
  return m_keeps ? folders("recent") : m_recent;
}

void RememberedState::addRecentFolder(const std::string& folder) {
  std::vector<std::string> recent = recentFolders();
  std::erase(recent, folder);
  recent.insert(recent.begin(), folder);
  recent.resize(std::min(recent.size(), recentFolderCount));
  m_recent = recent;
  setFolders("recent", recent);
}

void RememberedState::clearRecentFolders() {
  m_recent.clear();
  setFolders("recent", {});
}

std::string RememberedState::exportFolder() const {
  const std::vector<std::string> known = folders("export");
  return known.empty() ? std::string() : known.front();
}

// Paths are bytes, of any encoding: what is no plain letter is written as "%FF".
std::vector<std::string> RememberedState::folders(const char* key) const {
  std::vector<std::string> folders;
  if (m_keeps) {
    const QSettings file(foldersFileName(), QSettings::IniFormat);
    for (const QString& folder : file.value(key).toStringList()) {
      folders.push_back(QByteArray::fromPercentEncoding(folder.toLatin1()).toStdString());
    }
  }
  return folders;
}

void RememberedState::setFolders(const char* key, const std::vector<std::string>& folders) const {
  if (m_keeps) {
    QStringList list;
    for (const std::string& folder : folders) {
      list << QString::fromLatin1(QByteArray::fromStdString(folder).toPercentEncoding("/"));
    }
    QSettings file(foldersFileName(), QSettings::IniFormat);
    if (list.isEmpty()) {
      file.remove(key);
    } else {
      file.setValue(key, list);
    }
  }
}

RememberedState::Export RememberedState::exportSettings() const {
  Export settings;
  if (m_keeps) {
    const QSettings file(exportFileName(), QSettings::IniFormat);
    settings.keepsDates = file.value("keepDates", settings.keepsDates).toBool();
    settings.skipsExisting = file.value("skipExisting", settings.skipsExisting).toBool();
    const auto layout = layoutNames.indexOf(file.value("layout").toString());
    settings.layout = static_cast<ExportLayout>(std::max<qsizetype>(0, layout));
  }
  return settings;
}

void RememberedState::setExportSettings(const Export& settings) const {
  if (m_keeps) {
    QSettings file(exportFileName(), QSettings::IniFormat);
    file.setValue("keepDates", settings.keepsDates);
    file.setValue("skipExisting", settings.skipsExisting);
    file.setValue("layout", layoutNames[static_cast<qsizetype>(settings.layout)]);
  }
}

}  // namespace snaplift
