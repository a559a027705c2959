#pragma once

#include <QElapsedTimer>
#include <QString>
#include <functional>

namespace snaplift {

// Typing in a grid jumps to a name. Keys that follow each other quickly make one text; a pause or
// another key begins a new one.
class TypeSelect {
public:
  // Adds the typed text and returns all that counts now.
  const QString& add(const QString& text);
  void end() { m_sinceLastKey.invalidate(); }
  // Whether what is typed now goes on with a text.
  bool isTyping() const;

private:
  QString m_typed;
  QElapsedTimer m_sinceLastKey;
};

// The photo that `typed` means, or -1. Digits alone mean the number at the end of the name: "123"
// and "0123" both find IMG_0123.JPG, and as long as no number is equal, the first that begins with
// the digits. All else is the beginning of a name, letter case ignored, looked for from `focus` on
// and round to it; a single letter starts behind the focus, so that it steps through its names.
int indexOfTyped(const QString& typed, int count, int focus,
                 const std::function<QString(int)>& titleAt);

}  // namespace snaplift
