#pragma once

#include <optional>
#include <string>
#include <vector>

namespace snaplift {

// Why photos cannot be exported into the folder `destination`, as a sentence for the user (in which
// paths stand as they are); absent where they can. Asked once, before the first photo: it catches
// the mistake that would make every photo fail (no folder, no right to write), and the one that
// would do harm: a destination inside a backup, into which nothing is ever written.
//
// A backup is one of `backupFolders`, or any folder that holds an info.plist beside a manifest. The
// destination and all folders above it are compared by device and inode, after links are resolved,
// so that no other spelling of a path gets around it.
std::optional<std::string> exportDestinationProblem(const std::string& destination,
                                                    const std::vector<std::string>& backupFolders);

}  // namespace snaplift
