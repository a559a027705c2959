#pragma once

#include <QLabel>

namespace snaplift {

// A line of plain text that gives way where its room is narrow: what does not fit is left out in
// its middle, and a tooltip has it all, as a screen reader has.
class ElidedLabel : public QLabel {
public:
  using QLabel::QLabel;

  QSize minimumSizeHint() const override;

protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

private:
  QString shownText() const;
};

}  // namespace snaplift
