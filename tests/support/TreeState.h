#pragma once

#include <map>
#include <string>

namespace snaplift {

// What must not change of an entry, in words: mode, size (not of a folder), time of modification in
// nanoseconds, and the digest of a file's bytes or a link's target.
using EntryState = std::string;

// The state of a folder (under ".") and of everything below it, by relative path. Links are not
// followed. Throws std::runtime_error where something cannot be examined.
std::map<std::string, EntryState> treeState(const std::string& folder);

}  // namespace snaplift
