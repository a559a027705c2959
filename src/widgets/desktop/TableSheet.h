#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "widgets/desktop/Alert.h"

class QWidget;

namespace snaplift {

// Shows a list of rows on a sheet of `window`, which can be sorted by each column and is closed
// with Escape; so does each of the choices, which stand beside the button for that. Returns at
// once. All texts are plain, control characters the caller's matter.
void showTable(QWidget* window, const QString& title, const QStringList& columns,
               const std::vector<QStringList>& rows, const std::vector<AlertChoice>& choices = {});

}  // namespace snaplift
