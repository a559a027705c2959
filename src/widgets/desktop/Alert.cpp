#include "widgets/desktop/Alert.h"

#include <QCoreApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <utility>

namespace snaplift {
namespace {

struct Words {
  Q_DECLARE_TR_FUNCTIONS(Alert)
};

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
  showAlertWithChoices(window, text, {}, std::move(dismissed));
}

QMessageBox* showAlertWithChoices(QWidget* window, const AlertText& text,
                                  const std::vector<AlertChoice>& choices,
                                  std::function<void()> dismissed) {
  QMessageBox* alert = makeAlert(window, QMessageBox::Warning, text);
  QPushButton* ok = alert->addButton(Words::tr("Ok"), QMessageBox::AcceptRole);
  alert->setDefaultButton(ok);
  alert->setEscapeButton(ok);
  QObject::connect(alert, &QDialog::finished, alert, [alert, ok, dismissed = std::move(dismissed)] {
    const bool isDismissed = !alert->clickedButton() || alert->clickedButton() == ok;
    if (isDismissed && dismissed) {
      dismissed();
    }
  });
  for (const AlertChoice& choice : choices) {
    addChoice(*alert, choice);
  }
  alert->open();
  return alert;
}

void addChoice(QMessageBox& alert, const AlertChoice& choice) {
  const QPushButton* button = alert.addButton(choice.button, QMessageBox::ActionRole);
  QObject::connect(&alert, &QMessageBox::buttonClicked, &alert,
                   [button, chosen = choice.chosen](const QAbstractButton* clicked) {
                     if (clicked == button) {
                       chosen();
                     }
                   });
}

QMessageBox* askQuestion(QWidget* window, const AlertText& text, const QString& confirmButton,
                         std::function<void()> confirmed, const QString& otherButton,
                         std::function<void()> refused) {
  QMessageBox* alert = makeAlert(window, QMessageBox::Question, text);
  const QPushButton* confirm = alert->addButton(confirmButton, QMessageBox::DestructiveRole);
  QPushButton* cancel = alert->addButton(otherButton.isEmpty() ? Words::tr("Cancel") : otherButton,
                                         QMessageBox::RejectRole);
  alert->setDefaultButton(cancel);
  alert->setEscapeButton(cancel);
  QObject::connect(
      alert, &QDialog::finished, alert,
      [alert, confirm, confirmed = std::move(confirmed), refused = std::move(refused)] {
        if (alert->clickedButton() == confirm) {
          confirmed();
        } else if (refused) {
          refused();
        }
      });
  alert->open();
  return alert;
}

}  // namespace snaplift
