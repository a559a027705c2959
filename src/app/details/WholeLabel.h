#pragma once

#include <QLabel>

namespace snaplift {

// A label that gives way: where there is no room for all of its text it shows none, for half a
// number is another number. Screen readers always have it.
class WholeLabel : public QLabel {
  Q_OBJECT

public:
  using QLabel::QLabel;

  QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

protected:
  void paintEvent(QPaintEvent* event) override {
    if (width() >= sizeHint().width()) {
      QLabel::paintEvent(event);
    }
  }
};

}  // namespace snaplift
