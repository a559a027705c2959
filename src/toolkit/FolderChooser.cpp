#include "toolkit/FolderChooser.h"

#include <QFile>
#include <QFileDialog>
#include <QStandardPaths>
#include <utility>

namespace snaplift {

void chooseFolder(QWidget* window, const QString& prompt,
                  std::function<void(const std::string& folder)> chosen) {
  auto* dialog = new QFileDialog(
      window, prompt, QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
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
