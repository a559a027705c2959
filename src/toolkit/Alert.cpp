#include "toolkit/Alert.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <utility>

namespace snaplift {
namespace {

// As wide as some 50 letters.
int comfortableLine(const QWidget& widget) {
  constexpr int letters = 50;
  return letters * widget.fontMetrics().averageCharWidth();
}

QMessageBox* makeAlert(QWidget* window, QMessageBox::Icon icon, const AlertText& text) {
  auto* alert = new QMessageBox(window);
  alert->setAttribute(Qt::WA_DeleteOnClose);
  alert->setWindowModality(window ? Qt::WindowModal : Qt::ApplicationModal);
  alert->setIcon(icon);
  alert->setTextFormat(Qt::PlainText);
  alert->setText(text.messageText);
  alert->setInformativeText(text.informativeText);
  for (QLabel* label : alert->findChildren<QLabel*>()) {
    // The format that is set counts for the message alone; a file's name may look like markup.
    label->setTextFormat(Qt::PlainText);
    // Else the box is as narrow as its message, and the rest a tall column.
    label->setMinimumWidth(label->pixmap().isNull() ? comfortableLine(*label) : 0);
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
