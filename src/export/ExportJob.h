#pragma once

#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include "export/ExportFolders.h"
#include "export/ExportTypes.h"
#include "export/OrderedWork.h"
#include "export/PhotoWriter.h"

namespace snaplift {

// Copies photos into a folder: the one way in which the window, snaplift-cli, drags and the
// pasteboard do it. docs/architecture.md ("How a photo is written") has the promises. The photos
// get their names in the order of the list, so that the names do not depend on the number of
// workers; a photo that fails takes no name, and the next of the same name gets it. One that would
// be hidden (".jpg") gets a "_" before its name.
//
// A photo that fails is told and the others go on, until the destination is full, read-only or
// gone: then nothing more is begun. At the end the destination's file system is flushed once.
//
// The photos and the observer outlive the job.
class ExportJob {
public:
  ExportJob(std::vector<PhotoToExport> photos, std::string destination, ExportOptions options,
            ExportObserver& observer);
  ExportJob(const ExportJob&) = delete;
  ExportJob& operator=(const ExportJob&) = delete;
  ~ExportJob();  // stops and waits

  // Works on this thread and others, and returns after exportDidEnd().
  void run();

  // The same in the background. Once.
  void start();

  // Nothing more is begun; the photos in hand are finished. From any thread.
  void stop() { m_order.stop(); }

  // Returns after exportDidEnd() of a job that was started.
  void wait();

  // The paths that the photos get where none of them fails and nothing stands in their folders: by
  // the same rules, in their order. Where some fail, the others get some of these. Reads and writes
  // nothing; may be asked before the job begins.
  std::vector<std::string> expectedPaths() const;

  // How many photos are still to end.
  std::size_t remaining() const { return m_order.remaining(); }

private:
  void work();
  void end(const WrittenPhoto& photo);

  const std::vector<PhotoToExport> m_photos;
  const ExportOptions m_options;
  ExportObserver& m_observer;
  ExportFolders m_folders;
  const PhotoWriter m_writer;
  OrderedWork<WrittenPhoto> m_order;
  ExportSummary m_summary;  // of the photos that have ended: touched in their order
  std::thread m_thread;
};

}  // namespace snaplift
