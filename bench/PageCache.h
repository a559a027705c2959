#pragma once

#include <string>
#include <vector>

namespace snaplift::bench {

// Makes the next reading of the files come from the disk: all that is still to be written is, and
// the files' pages are dropped. Works where the file system keeps its files in the page cache
// alone: ext4 and the like; a memory file system has no disk to read from. False where it failed.
bool evictFromPageCache(const std::vector<std::string>& paths);

}  // namespace snaplift::bench
