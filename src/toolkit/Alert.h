#pragma once

#include <QString>
#include <functional>

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

// Asks a question the same way. `confirmed` is called only when the user chooses `confirmButton`;
// the other button says "Cancel" and is the default.
void askQuestion(QWidget* window, const AlertText& text, const QString& confirmButton,
                 std::function<void()> confirmed);

}  // namespace snaplift
