#include "widgets/desktop/TableSheet.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace snaplift {
namespace {

QTreeWidget* makeTable(const QStringList& columns, const std::vector<QStringList>& rows) {
  auto* table = new QTreeWidget;
  table->setHeaderLabels(columns);
  table->setRootIsDecorated(false);
  table->setUniformRowHeights(true);  // else ten thousand rows are measured one by one
  table->setAlternatingRowColors(true);
  QList<QTreeWidgetItem*> items;
  for (const QStringList& row : rows) {
    items << new QTreeWidgetItem(row);
  }
  table->addTopLevelItems(items);
  table->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  table->header()->setStretchLastSection(true);
  table->setSortingEnabled(true);
  table->sortByColumn(0, Qt::AscendingOrder);
  return table;
}

}  // namespace

void showTable(QWidget* window, const QString& title, const QStringList& columns,
               const std::vector<QStringList>& rows, const std::vector<AlertChoice>& choices) {
  auto* sheet = new QDialog(window);
  sheet->setAttribute(Qt::WA_DeleteOnClose);
  sheet->setWindowModality(Qt::WindowModal);
  sheet->setWindowTitle(title);
  QTreeWidget* table = makeTable(columns, rows);
  table->setAccessibleName(title);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  QObject::connect(buttons, &QDialogButtonBox::rejected, sheet, &QDialog::reject);
  for (const AlertChoice& choice : choices) {
    const auto* button = buttons->addButton(choice.button, QDialogButtonBox::ActionRole);
    QObject::connect(button, &QPushButton::clicked, sheet, [sheet, chosen = choice.chosen] {
      sheet->close();
      chosen();
    });
  }
  auto* layout = new QVBoxLayout(sheet);
  layout->addWidget(table);
  layout->addWidget(buttons);
  sheet->resize(560, 360);
  sheet->open();
}

}  // namespace snaplift
