#include <QApplication>
#include <QDir>
#include <QStyleFactory>
#include <QTextStream>
#include <functional>
#include <map>

#include "Gallery.h"

// snaplift-gallery FOLDER [VIEW...]: writes pictures of the views named, or of all, into FOLDER.
int main(int argc, char** argv) {
  const std::map<QString, std::function<void(const QString& folder)>> views = {
      {"browser", snaplift::gallery::paintBrowser},
      {"sidebar", snaplift::gallery::paintSidebar},
      {"window", snaplift::gallery::paintWindow},
  };

  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  const QStringList words = QApplication::arguments();
  QStringList names = words.mid(2);
  if (names.isEmpty()) {
    for (const auto& view : views) {
      names << view.first;
    }
  }
  bool usable = words.size() > 1 && QDir().mkpath(words[1]);
  for (const QString& name : names) {
    usable = usable && views.contains(name);
  }
  if (!usable) {
    QTextStream(stderr) << "usage: snaplift-gallery FOLDER [VIEW...]\n";
    return 2;
  }
  for (const QString& name : names) {
    views.at(name)(words[1]);
  }
  return 0;
}
