#pragma once

#include <string>

namespace snaplift::bench {

// Makes the next reading of the file come from the disk: its changes are written back and its pages
// are dropped. Works where the file system keeps its files in the page cache alone: ext4 and the
// like; a memory file system has no disk to read from. False where it failed.
bool evictFromPageCache(const std::string& path);

}  // namespace snaplift::bench
