#pragma once

#include <filesystem>
#include <mutex>
#include <string>
#include <vector>

#include <sys/types.h>

#include "foundation/files/FileDescriptor.h"

namespace snaplift {

// A private folder (mode 0700, a name that nobody can guess) that goes away with its owner: with
// the object, or, when the process was killed, at the next start of the program. As long as the
// owner lives the folder itself is locked (flock); the system lets go of the lock when the process
// is gone, whatever ended it. So a folder whose lock is free is abandoned, without trust in process
// numbers, and cleaners of temporary folders that respect locks stay away from a living one.
//
// Removal never follows a link, never crosses to another file system, and touches nothing outside
// of the folder. All functions are safe to call from any thread. A child made by fork() shares the
// folder and does not remove it.
class TemporaryFolder {
public:
  // Makes the folder in the first of `parents` that takes one, after the abandoned folders of the
  // same user were removed from all of them.
  explicit TemporaryFolder(const std::vector<std::string>& parents);
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() { remove(); }

  // The folder's absolute path; empty where no parent took one. It stays the same after remove().
  const std::string& path() const { return m_path; }

  // Removes the folder and what is in it. Other threads that are about to make a file in it cannot.
  // Does nothing the second time.
  void remove();

private:
  bool makeIn(const std::string& parent);

  std::string m_path;
  FileDescriptor m_folder;  // holds the lock
  pid_t m_owner;
  std::mutex m_removal;
};

// Where no temporary folder may be: answers whether `folder`, an absolute path without links, is
// such a place. Set once, before the process has begun a second thread.
using TemporaryFolderVeto = bool (*)(const std::filesystem::path& folder);
void setTemporaryFolderVeto(TemporaryFolderVeto veto);

// Removes what processes of the same user that were killed have left where temporaryFolder() would
// be made: for the start of a program that may not need one for long.
void removeAbandonedTemporaryFolders();

// The temporary folder of the process, made when it is asked for first: in $TMPDIR, unless there is
// a veto, else in /var/tmp, which is on a disk and has room for photos. Empty where
// neither takes one. Removed at a normal exit. Whoever keeps the path finds it gone after
// removeTemporaryFolder().
const std::string& temporaryFolder();

// Removes the folder of the process now, where it was made at all. For an end that skips the normal
// exit, such as one that a signal asked for; not to be called from inside a signal handler.
void removeTemporaryFolder();

}  // namespace snaplift
