#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "app/export/WindowExports.h"
#include "widgets/desktop/Alert.h"

namespace snaplift {

// What is said of an export when it is over. Names of photos and folders stand in it escaped.

// "412 photos exported to Pictures", and what did not arrive.
QString exportedText(const ExportReport& report);

// Each photo that failed and each backup that was left out or is damaged, and why.
std::vector<QStringList> failureRows(const ExportReport& report);

// The photos need more bytes than are free in the destination.
AlertText littleRoomText(const std::string& destination, std::uint64_t needed, std::uint64_t free);

// The destination is full, read-only or gone.
AlertText lostDestinationText(const ExportReport& report);

// All photos are there, and their disk does not say that it has them.
AlertText unsafeExportText(const ExportReport& report);

// The report of an export, which could not be saved; and one that was, with all its files read.
AlertText unsavedReportText(const QString& reason);
QString savedReportText(const std::string& file, bool isProven);

// Photos that were copied to the clipboard and did not reach who asked for them.
AlertText failedCopyText(const std::vector<ExportedPhoto>& failures, std::size_t photos);

}  // namespace snaplift
