#include "app/words/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <memory>

namespace snaplift {

QString installTranslations(const QStringList& languages) {
  for (const QString& name : languages) {
    QString language = QString(name).replace('-', '_').section('_', 0, 0);
    if (language == "en") {
      break;  // whoever names it before another means it
    }
    auto ours = std::make_unique<QTranslator>(QCoreApplication::instance());
    if (!ours->load(":/translations/snaplift_" + language)) {
      continue;
    }
    auto toolkits = std::make_unique<QTranslator>(QCoreApplication::instance());
    if (toolkits->load("qtbase_" + language, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
      QCoreApplication::installTranslator(toolkits.release());
    }
    QCoreApplication::installTranslator(ours.release());
    return language;
  }
  return "en";
}

}  // namespace snaplift
