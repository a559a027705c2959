#pragma once

#include <QString>
#include <QWidget>
#include <vector>

class QGridLayout;
class QLabel;

namespace snaplift {

// One thing that is known: "Size", "2.3 MB".
struct Fact {
  QString caption, value;
};

// Facts one below the other, as plain text that can be selected with the pointer and the keyboard.
// A screen reader reads each with its caption. A fact without a value is left out.
class FactTable : public QWidget {
  Q_OBJECT

public:
  explicit FactTable(QWidget* parent = nullptr);

  // Labels stay, so that the keyboard's place does.
  void setFacts(const std::vector<Fact>& facts);
  // Null where there is no such fact.
  QLabel* valueOf(const QString& caption) const;

private:
  struct Row {
    QLabel* caption;
    QLabel* value;
  };
  Row addRow();

  QGridLayout* m_layout;
  std::vector<Row> m_rows;
};

}  // namespace snaplift
