#pragma once

#include <QFrame>
#include <QString>

class QLabel;
class QLineEdit;

namespace snaplift {

// The line over the photos in which somebody types what he looks for, and that says what else is
// left out. It shows while it is open or has something to say, and knows no photos.
//
// Escape in the field empties and closes it; Return, Down and Page Down go on to the photos.
class FindBar : public QFrame {
  Q_OBJECT

public:
  explicit FindBar(QWidget* parent = nullptr);

  QString text() const;
  // Shows the field, with its text selected, and gives it the keyboard. `typed` was typed elsewhere
  // and begins a new text.
  void open(const QString& typed = {});
  // Empties the field and hides it.
  void close();
  // Plain; empty: nothing to say.
  void tell(const QString& text);

signals:
  void textChanged(const QString& text);
  // The keyboard is to go to the photos.
  void left();

protected:
  bool eventFilter(QObject* object, QEvent* event) override;

private:
  void addClearButton();
  void updateVisibility();

  QLineEdit* m_field;
  QLabel* m_text;
  bool m_isOpen = false;
};

}  // namespace snaplift
