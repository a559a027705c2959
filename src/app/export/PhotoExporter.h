#pragma once

#include <QObject>
#include <QPointer>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "app/export/EverythingToExport.h"
#include "app/export/WindowExports.h"

class QMessageBox;
class QWidget;

namespace snaplift {

class ExportNotice;
class ExportProgressBar;

// The window's exports as the person before it meets them: asked before one begins where its disk
// has too little room, told how far they are, and told at the end of each what came of it, by the
// desktop where the window is not in front. Of a destination that is full or gone it asks whether
// to go on with what is left.
//
// The user interface's thread. The views and the photos outlive the object; its end stops the
// exports after the photos in hand.
class PhotoExporter : public QObject {
  Q_OBJECT

public:
  PhotoExporter(QWidget& window, ExportProgressBar& progress, ExportNotice& notice);
  ~PhotoExporter() override;

  // What is missing of `report`, into its destination, which has been looked at.
  void exportPhotos(ExportReport report);
  // The same of what has still to be collected. One at a time.
  void exportEverything(std::unique_ptr<EverythingToExport> everything,
                        const std::string& destination, const ExportOptions& options);

  bool isCollecting() const { return m_everything != nullptr; }
  bool isExporting() const { return m_exports.isExporting(); }
  std::size_t remaining() const { return m_exports.remaining(); }

  // Returns after the photos in hand; nothing is told of it.
  void stopAndWait() { m_exports.stopAndWait(); }

  // Calls `stopped` when the user has chosen so and the exports have stopped.
  void askWhetherToStop(const std::function<void()>& stopped);

signals:
  // One of the answers above has changed.
  void progressed();

private:
  void beginWhereThereIsRoom(const ExportReport& report, std::uint64_t bytes,
                             const std::function<void()>& begin);
  void showProgress();
  void stop();
  void tellEnd(const ExportReport& report);

  QWidget& m_window;
  ExportProgressBar& m_progress;
  ExportNotice& m_notice;
  WindowExports m_exports;
  std::unique_ptr<EverythingToExport> m_everything;
  QPointer<QMessageBox> m_stopQuestion;
};

}  // namespace snaplift
