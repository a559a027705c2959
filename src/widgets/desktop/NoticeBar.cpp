#include "widgets/desktop/NoticeBar.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QStyle>
#include <QToolButton>

namespace snaplift {
namespace {

// More would leave the text no room in a narrow window: they stand below it.
constexpr std::size_t mostActionsBesideText = 2;

}  // namespace

NoticeBar::NoticeBar(QWidget* parent)
    : QFrame(parent), m_layout(new QBoxLayout(QBoxLayout::LeftToRight)), m_text(new QLabel) {
  setAutoFillBackground(true);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(12, 6, 6, 6);
  row->addLayout(m_layout, 1);
  m_text->setTextFormat(Qt::PlainText);
  m_text->setWordWrap(true);
  m_layout->addWidget(m_text, 1);
  auto* close = new QToolButton;
  close->setIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton));
  close->setAutoRaise(true);
  close->setToolTip(tr("Close this notice (Esc)"));
  close->setAccessibleName(tr("Close Notice"));
  row->addWidget(close, 0, Qt::AlignTop);
  connect(close, &QToolButton::clicked, this, &QWidget::hide);
  // Of a widget that is hidden no shortcut works: Escape is the others' again.
  auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  connect(escape, &QShortcut::activated, this, &QWidget::hide);
  connect(escape, &QShortcut::activatedAmbiguously, this, &QWidget::hide);  // one bar at a time
  hide();
}

void NoticeBar::tell(const QString& text, const std::vector<NoticeAction>& actions) {
  if (m_buttons) {
    m_buttons->hide();
    m_buttons->deleteLater();  // one of them may have brought us here
  }
  m_buttons = new QWidget;
  auto* row = new QHBoxLayout(m_buttons);
  row->setContentsMargins(0, 0, 0, 0);
  const bool fit = actions.size() <= mostActionsBesideText;
  m_layout->setDirection(fit ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  m_layout->addWidget(m_buttons, 0, fit ? Qt::Alignment() : Qt::AlignLeft);
  for (const NoticeAction& action : actions) {
    add(action);
  }
  m_text->setText(text);
  setAccessibleName(text);
  show();
  QAccessibleEvent event(m_text, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

void NoticeBar::add(const NoticeAction& action) {
  auto* button = new QPushButton(action.text);
  m_buttons->layout()->addWidget(button);
  connect(button, &QPushButton::clicked, this, [this, action] {
    if (action.closes) {
      hide();
    }
    action.chosen();
  });
}

}  // namespace snaplift
