#include "app/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>
#include <algorithm>

namespace snaplift {
namespace {

constexpr int fewestLetters = 8;

}  // namespace

QSize ElidedLabel::minimumSizeHint() const {
  const QSize whole = QLabel::minimumSizeHint();
  return {std::min(whole.width(), fewestLetters * fontMetrics().averageCharWidth()),
          whole.height()};
}

QString ElidedLabel::shownText() const {
  return fontMetrics().elidedText(text(), m_elideMode, contentsRect().width());
}

bool ElidedLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) {
    return QLabel::event(event);
  }
  const QString hint = shownText() == text() ? QString() : Qt::convertFromPlainText(text());
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), hint, this);
  return true;
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(),
                        isEnabled(), shownText(), foregroundRole());
}

}  // namespace snaplift
