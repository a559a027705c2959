#include "app/words/CoreText.h"

#include <QCoreApplication>

#include "foundation/Log.h"

namespace snaplift {
namespace {

QString translated(const char* english) {
  return QCoreApplication::translate("Core", english);
}

}  // namespace

QString coreText(const Sentence& sentence) {
  QStringList words(2);
  for (std::size_t i = 0; i < std::min<std::size_t>(2, sentence.words.size()); ++i) {
    words[static_cast<qsizetype>(i)] = QString::fromStdString(escapedForLog(sentence.words[i]));
  }
  const QString pattern = translated(sentence.english);
  // At once: a "%2" in the first of the words is nobody's place.
  return sentence.words.size() > 1 ? pattern.arg(words[0], words[1]) : pattern.arg(words[0]);
}

QString coreText(const FileError& error) {
  return translated(error.reason().c_str());
}

QString deviceTitle(DeviceModel& device) {
  const std::optional<std::string> own = device.ownTitle();
  return own ? QString::fromStdString(*own) : translated(DeviceModel::unnamed);
}

}  // namespace snaplift
