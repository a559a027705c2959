#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "export/ExportJob.h"

namespace snaplift {

// Photos as files in the temporary folder, for receivers that take nothing but existing files:
// written when they are first asked for, once, by workers. The files stay as long as the process.
// User interface's thread. Held by std::shared_ptr, so that whoever asks can keep it: see paths().
class TemporaryPhotos : public QObject, public ExportObserver {
  Q_OBJECT

public:
  // Those that could not be written, in their order.
  using Failed = std::function<void(const std::vector<ExportedPhoto>& photos)>;

  // `failed` is called once, before paths() answers, and only where there is something to tell.
  TemporaryPhotos(const std::vector<ImageItem*>& photos, Failed failed);

  // The paths of the files, in the order of the photos; those that could not be written are left
  // out. The first call returns when they are written: the event loop runs meanwhile, without the
  // user's input, so the window goes on painting and other receivers may ask. The asker's own owner
  // may be gone afterwards (another program took the clipboard).
  const std::vector<std::string>& paths();

signals:
  void written();

private:
  void photoDidEnd(const ExportedPhoto& photo) override;
  void exportDidEnd(const ExportSummary& summary) override;
  void begin();
  void tellFailures();

  std::vector<PhotoToExport> m_photos;
  Failed m_failed;
  std::vector<std::string> m_paths;  // the job's until it has ended
  std::vector<ExportedPhoto> m_failures;
  bool m_isWritten = false;
  std::unique_ptr<ExportJob> m_job;
};

}  // namespace snaplift
