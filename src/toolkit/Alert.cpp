#include "toolkit/Alert.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <utility>

namespace snaplift {
namespace {

QMessageBox* makeAlert(QWidget* window, QMessageBox::Icon icon, const AlertText& text) {
  auto* alert = new QMessageBox(window);
  alert->setAttribute(Qt::WA_DeleteOnClose);
  alert->setWindowModality(window ? Qt::WindowModal : Qt::ApplicationModal);
  alert->setIcon(icon);
  alert->setTextFormat(Qt::PlainText);
  alert->setText(text.messageText);
  alert->setInformativeText(text.informativeText);
  // The format that is set counts for the message alone; a file's name may look like markup.
  for (QLabel* label : alert->findChildren<QLabel*>()) {
    label->setTextFormat(Qt::PlainText);
  }
  return alert;
}

}  // namespace

void showAlert(QWidget* window, const AlertText& text, std::function<void()> dismissed) {
  QMessageBox* alert = makeAlert(window, QMessageBox::Warning, text);
  alert->setDefaultButton(alert->addButton("Ok", QMessageBox::AcceptRole));
  QObject::connect(alert, &QDialog::finished, alert, [dismissed = std::move(dismissed)] {
    if (dismissed) {
      dismissed();
    }
  });
  alert->open();
}

void askQuestion(QWidget* window, const AlertText& text, const QString& confirmButton,
                 std::function<void()> confirmed) {
  QMessageBox* alert = makeAlert(window, QMessageBox::Question, text);
  const QPushButton* confirm = alert->addButton(confirmButton, QMessageBox::DestructiveRole);
  QPushButton* cancel = alert->addButton("Cancel", QMessageBox::RejectRole);
  alert->setDefaultButton(cancel);
  alert->setEscapeButton(cancel);
  QObject::connect(alert, &QMessageBox::buttonClicked, alert,
                   [confirm, confirmed = std::move(confirmed)](const QAbstractButton* clicked) {
                     if (clicked == confirm) {
                       confirmed();
                     }
                   });
  alert->open();
}

}  // namespace snaplift
