#include "app/photos/FindBar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace snaplift {
namespace {

constexpr int narrowestField = 160;
constexpr int widestField = 300;
constexpr int longestText = 200;  // no name has more letters

}  // namespace

FindBar::FindBar(QWidget* parent)
    : QFrame(parent), m_field(new QLineEdit(this)), m_text(new QLabel(this)) {
  setAutoFillBackground(true);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(12, 6, 12, 6);
  row->setSpacing(12);
  m_field->setAccessibleName(tr("Find Photos"));
  m_field->setPlaceholderText(tr("Name, folder or date (June 2011)"));
  m_field->setMaxLength(longestText);
  m_field->setMinimumWidth(narrowestField);
  m_field->setMaximumWidth(widestField);
  m_field->installEventFilter(this);
  row->addWidget(m_field, 1);
  m_text->setTextFormat(Qt::PlainText);
  m_text->setWordWrap(true);
  row->addWidget(m_text, 1);
  connect(m_field, &QLineEdit::textChanged, this, &FindBar::textChanged);
  updateVisibility();
}

QString FindBar::text() const {
  return m_field->text();
}

// When the field is first seen: its icon loads the readers of every kind of picture, which nobody
// is to wait for at the start.
void FindBar::addClearButton() {
  m_field->setClearButtonEnabled(true);
  for (QToolButton* clear : m_field->findChildren<QToolButton*>()) {
    clear->setAccessibleName(tr("Clear"));
    clear->setToolTip(tr("Show all photos again (Esc)"));
  }
}

void FindBar::open(const QString& typed) {
  if (!m_field->isClearButtonEnabled()) {
    addClearButton();
  }
  m_isOpen = true;
  updateVisibility();
  m_field->setFocus(Qt::ShortcutFocusReason);
  if (typed.isEmpty()) {
    m_field->selectAll();
  } else {
    m_field->setText(typed);
  }
}

void FindBar::close() {
  const bool hadFocus = m_field->hasFocus();
  m_isOpen = false;
  m_field->clear();
  if (hadFocus) {
    emit left();
  }
  updateVisibility();
}

void FindBar::tell(const QString& text) {
  m_text->setText(text);
  updateVisibility();
}

void FindBar::updateVisibility() {
  m_field->setVisible(m_isOpen);
  setVisible(m_isOpen || !m_text->text().isEmpty());
}

bool FindBar::eventFilter(QObject* object, QEvent* event) {
  if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride) {
    return QFrame::eventFilter(object, event);
  }
  const int key = static_cast<QKeyEvent*>(event)->key();
  const bool leaves = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Down ||
                      key == Qt::Key_PageDown;
  if (key != Qt::Key_Escape && !leaves) {
    return QFrame::eventFilter(object, event);
  }
  if (event->type() == QEvent::ShortcutOverride) {
    event->accept();  // Escape would close a notice
  } else if (leaves) {
    emit left();
  } else {
    close();
  }
  return true;
}

}  // namespace snaplift
