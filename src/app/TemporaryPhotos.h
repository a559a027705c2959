#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "export/ExportJob.h"
#include "widgets/promises/PromisedFiles.h"

namespace snaplift {

// Photos as files in the temporary folder, for receivers of a copy or a drag that take nothing but
// existing files: exported there when they are first asked for, once, into a folder of their own.
// The files stay as long as the process. User interface's thread.
class TemporaryPhotos : public QObject, public PromisedFileList, private ExportObserver {
  Q_OBJECT

public:
  // Those that could not be written, in their order.
  using Failed = std::function<void(const std::vector<ExportedPhoto>& photos)>;

  // `failed` is called once, before write() returns, and only where there is something to tell. The
  // photos are not owned and outlive the object.
  TemporaryPhotos(std::vector<ImageItem*> photos, Failed failed)
      : m_photos(std::move(photos)), m_failed(std::move(failed)) {}

  // Photos of one name are numbered, as in any export.
  const std::vector<std::string>& paths() override;
  void write() override;

signals:
  void written();

private:
  void photoDidEnd(const ExportedPhoto& photo) override;
  void exportDidEnd(const ExportSummary& summary) override;
  void prepare();
  void tellFailures();

  const std::vector<ImageItem*> m_photos;
  Failed m_failed;
  std::vector<std::string> m_expected;
  std::vector<std::string> m_written;     // the job's until it has ended
  std::vector<ExportedPhoto> m_failures;  // likewise
  bool m_isBegun = false;
  bool m_isWritten = false;
  std::unique_ptr<ExportJob> m_job;
};

}  // namespace snaplift
