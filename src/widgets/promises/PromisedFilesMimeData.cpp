#include "widgets/promises/PromisedFilesMimeData.h"

#include <QSysInfo>

#include "foundation/files/FileURL.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

const QString directSave = QStringLiteral("XdndDirectSave0");
const QString dolphinList = QStringLiteral("application/x-kde4-urilist");
const QString fileList = QStringLiteral("text/uri-list");

}  // namespace

PromisedFilesMimeData::PromisedFilesMimeData(PromisedFilesSource& source, QObject& owner,
                                             std::unique_ptr<DirectSaveChannel> channel)
    : m_source(source),
      m_owner(&owner),
      m_channel(std::move(channel)),
      m_list(source.promisedFiles()),
      m_firstName(source.firstPromisedName()) {
  if (!isFileName(m_firstName)) {
    m_firstName = "photo";
  }
}

void PromisedFilesMimeData::dragDidBegin() {
  if (m_channel) {
    m_channel->offer(m_firstName);
  }
}

void PromisedFilesMimeData::pointerDidMove() {
  m_targetSavesDirectly = m_channel && m_channel->lookAtTarget();
}

void PromisedFilesMimeData::willDrop() {
  m_isReleased = true;
  if (m_list && !m_targetSavesDirectly) {
    m_list->write();
  }
}

QStringList PromisedFilesMimeData::formats() const {
  return m_channel ? QStringList{directSave, dolphinList, fileList} : QStringList{fileList};
}

bool PromisedFilesMimeData::hasFormat(const QString& format) const {
  return formats().contains(format);
}

QVariant PromisedFilesMimeData::retrieveData(const QString& format, QMetaType) const {
  if (!hasFormat(format)) {
    return {};
  }
  if (format == directSave) {
    return saveDirectly();
  }
  const std::shared_ptr<PromisedFileList> list = m_list;
  if (!list) {
    return {};
  }
  // Asked while the pointer hovers, a list of paths is all that there is.
  if (m_isReleased) {
    list->write();
  }
  return QByteArray::fromStdString(uriList(list->paths()));
}

QByteArray PromisedFilesMimeData::saveDirectly() const {
  if (!m_directSaveAnswer.isEmpty()) {
    return m_directSaveAnswer;
  }
  const std::optional<std::string> folder =
      folderOfDirectSave(m_channel->answer(), QSysInfo::machineHostName().toStdString());
  if (!folder || !m_owner) {
    return "E";
  }
  m_directSaveAnswer = "S";
  m_channel->withdraw();
  m_source.namesOfPromisedFilesDroppedAtDestination(*folder);
  return m_directSaveAnswer;
}

}  // namespace snaplift
