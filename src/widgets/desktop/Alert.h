#pragma once

#include <QString>
#include <functional>
#include <vector>

class QMessageBox;
class QWidget;

namespace snaplift {

// A message that the user has to dismiss before going on.
struct AlertText {
  QString messageText;      // what happened, in a few words
  QString informativeText;  // what it means for the user
};

// Shows the alert with the one button "Ok" and returns at once; no nested event loop runs. It
// blocks `window`, or the whole application where that is null. `dismissed` is called when the user
// is done with it, on the user interface's thread; not when the application quits meanwhile.
void showAlert(QWidget* window, const AlertText& text, std::function<void()> dismissed = {});

// A further button of an alert, and what it does.
struct AlertChoice {
  QString button;
  std::function<void()> chosen;
};

// Shows the alert with more than "Ok", which stays the default: the user chooses one of all
// buttons. `dismissed` belongs to "Ok" and to closing the alert.
QMessageBox* showAlertWithChoices(QWidget* window, const AlertText& text,
                                  const std::vector<AlertChoice>& choices,
                                  std::function<void()> dismissed);

// Adds a choice to an alert that is up.
void addChoice(QMessageBox& alert, const AlertChoice& choice);

// Asks a question the same way. `confirmed` is called only when the user chooses `confirmButton`;
// the other button, or "Cancel", is the default. Whoever asked may close the question: that counts
// as the other button.
QMessageBox* askQuestion(QWidget* window, const AlertText& text, const QString& confirmButton,
                         std::function<void()> confirmed, const QString& otherButton = {},
                         std::function<void()> refused = {});

}  // namespace snaplift
