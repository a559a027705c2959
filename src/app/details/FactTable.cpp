#include "app/details/FactTable.h"

#include <QGridLayout>
#include <QLabel>

#include "widgets/desktop/PlainText.h"

namespace snaplift {

FactTable::FactTable(QWidget* parent) : QWidget(parent), m_layout(new QGridLayout(this)) {
  m_layout->setContentsMargins(0, 0, 0, 0);
  m_layout->setHorizontalSpacing(8);
  m_layout->setVerticalSpacing(6);
  m_layout->setColumnStretch(1, 1);
}

FactTable::Row FactTable::addRow() {
  const Row row{new QLabel(this), new QLabel(this)};
  row.caption->setTextFormat(Qt::PlainText);
  row.caption->setForegroundRole(QPalette::PlaceholderText);
  row.value->setTextFormat(Qt::PlainText);
  row.value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  row.value->setWordWrap(true);
  // By the language of the window, whatever that of the text is.
  row.value->setAlignment(Qt::AlignTop | Qt::AlignAbsolute |
                          (isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft));
  // A long word is cut rather than the panel widened.
  row.value->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  row.caption->setBuddy(row.value);
  const int place = static_cast<int>(m_rows.size());
  m_layout->addWidget(row.caption, place, 0, Qt::AlignRight | Qt::AlignTop);
  m_layout->addWidget(row.value, place, 1, Qt::AlignTop);
  return row;
}

void FactTable::setFacts(const std::vector<Fact>& facts) {
  std::size_t used = 0;
  for (const Fact& fact : facts) {
    if (fact.value.isEmpty()) {
      continue;
    }
    if (used == m_rows.size()) {
      m_rows.push_back(addRow());
    }
    const Row& row = m_rows[used++];
    if (row.value->text() != fact.value) {  // what is selected stays
      row.value->setText(fact.value);
    }
    row.caption->setText(fact.caption);
    row.value->setToolTip(plainText::toolTip(fact.value));  // also of a word that is cut
    row.value->setAccessibleName(tr("%1: %2").arg(fact.caption, fact.value));
  }
  for (std::size_t i = 0; i < m_rows.size(); ++i) {
    m_rows[i].caption->setVisible(i < used);
    m_rows[i].value->setVisible(i < used);
  }
}

QLabel* FactTable::valueOf(const QString& caption) const {
  for (const Row& row : m_rows) {
    if (row.caption->text() == caption && row.caption->isVisibleTo(this)) {
      return row.value;
    }
  }
  return nullptr;
}

}  // namespace snaplift
