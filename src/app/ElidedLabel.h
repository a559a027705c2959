#pragma once

#include <QLabel>

namespace snaplift {

// A line of plain text that gives way where its room is narrow: what does not fit is left out, and
// a tooltip has it all, as a screen reader has.
class ElidedLabel : public QLabel {
public:
  using QLabel::QLabel;

  // Where letters are left out. Otherwise at the end.
  void setElideMode(Qt::TextElideMode mode) { m_elideMode = mode; }

  QSize minimumSizeHint() const override;

protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

private:
  QString shownText() const;

  Qt::TextElideMode m_elideMode = Qt::ElideRight;
};

}  // namespace snaplift
