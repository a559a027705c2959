#pragma once

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>

namespace snaplift {

// What can be seen of one entry of a folder without having changed it: two equal states mean that
// nobody wrote to it. The access time is left out, since reading is allowed.
struct EntryState {
  std::uint32_t mode = 0;       // kind and permissions, as the file system has them
  std::uint64_t size = 0;       // in bytes; 0 for folders, whose size is the file system's affair
  std::int64_t modifiedAt = 0;  // in nanoseconds since 1970
  std::string contentDigest;    // SHA-1 of a file's bytes or a link's target; else empty

  bool operator==(const EntryState&) const = default;
};

std::ostream& operator<<(std::ostream& out, const EntryState& state);

// The state of a folder (under ".") and of everything below it, by relative path. Links are not
// followed. Throws std::runtime_error where something cannot be examined.
std::map<std::string, EntryState> treeState(const std::string& folder);

}  // namespace snaplift
