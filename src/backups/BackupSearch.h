#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <system_error>
#include <vector>

#include "backups/BackupModel.h"

namespace snaplift {

// What a search tells while it runs, on its own thread.
struct BackupSearchEvents {
  // A backup, each folder once. It can be used at once.
  std::function<void(std::unique_ptr<BackupModel> backup)> found;
  // The folder that is looked into now.
  std::function<void(const std::string& folder)> looking = {};
  // A folder of whose content not all could be read.
  std::function<void(const std::string& folder, const std::error_code& error)> unreadable = {};
};

struct BackupSearchResult {
  std::size_t folders = 0;     // that were looked into
  std::size_t backups = 0;     // that were found
  std::size_t forbidden = 0;   // folders of which a permission is missing
  std::size_t unreadable = 0;  // folders that a disk that fails, or has gone, keeps to itself
  bool tooDeep = false;        // some folders lie deeper than anybody keeps a backup
  bool diskIsGone = false;     // nothing can be read any more: the search may have ended early
};

// Finds the backups in folders of any kind: a backup, a root, a user folder, a whole disk. Looks
// into the known places first, then into everything, breadth first; never into a backup, through a
// link, or into a mount that was not named; into no folder twice. A folder counts as a backup where
// it has a readable info file, and deep inside of other folders a manifest, too: half of all
// programs have an "Info.plist". A damaged backup is named in the system log.
//
// Memory does not grow with the tree: a bounded number of folders waits in line, and where there
// are more of them each is searched at once, depth first. Runs on the caller's thread until it is
// done or `stop` is requested, which every folder looks at.
BackupSearchResult searchForBackups(const std::vector<std::string>& folders,
                                    const BackupSearchEvents& events, std::stop_token stop = {});

}  // namespace snaplift
