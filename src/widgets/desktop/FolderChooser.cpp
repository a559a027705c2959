#include "widgets/desktop/FolderChooser.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>
#include <utility>

namespace snaplift {
namespace {

// On a folder that does not exist the dialog offers no button to confirm with.
QString firstFolder(const QStringList& folders) {
  for (const QString& folder : folders) {
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) {
      return folder;
    }
  }
  return QDir::rootPath();
}

}  // namespace

void chooseFolder(QWidget* window, const QString& prompt,
                  std::function<void(const std::string& folder)> chosen, const std::string& start) {
  auto* dialog = new QFileDialog(
      window, prompt,
      firstFolder({QFile::decodeName(start.c_str()),
                   QStandardPaths::writableLocation(QStandardPaths::PicturesLocation),
                   QDir::homePath()}));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(QFileDialog::Directory);
  dialog->setOption(QFileDialog::ShowDirsOnly);
  dialog->setLabelText(QFileDialog::Accept, prompt);
  QObject::connect(dialog, &QFileDialog::fileSelected, dialog,
                   [chosen = std::move(chosen)](const QString& folder) {
                     chosen(QFile::encodeName(folder).toStdString());
                   });
  dialog->open();
}

}  // namespace snaplift
