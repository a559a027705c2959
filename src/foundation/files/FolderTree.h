#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "foundation/files/File.h"
#include "foundation/files/FileDescriptor.h"

namespace snaplift {

// A folder and whatever lies below it on the same mount. No link is followed on the way down and no
// mount is entered, bind mounts included, also where somebody exchanges a folder for a link in this
// moment; so no folder can be reached twice. Only the top itself, which somebody named, may be
// reached by links. Keeps one descriptor. Any number of threads may use it at once.
class FolderTree {
public:
  // What kept it from being opened says error().
  explicit FolderTree(const std::string& top);

  const std::error_code& error() const { return m_error; }

  // Calls `visit` for each entry of the folder at `path`, relative to the top and empty for the top
  // itself, until it answers false. The answer is what kept it from the end: nothing, EXDEV for a
  // mount, ELOOP for a link, or an error of the system. Paths of PATH_MAX bytes and more cannot be
  // opened. `visit` may ask this tree for other folders.
  using Visitor = std::function<bool(std::string_view name, bool isFolder)>;
  std::error_code visitEntries(const std::string& path, const Visitor& visit) const;

  // Whether there is a folder of that path that visitEntries() could open.
  bool holdsFolder(const std::string& path) const { return bool(open(path)); }

  // Whether `path` leads to the top: not any more where its disk was unmounted.
  bool isStillAt(const std::string& path) const { return folderIdentity(path) == m_identity; }

private:
  FileDescriptor open(const std::string& path) const;

  FileDescriptor m_top;
  FolderIdentity m_identity = {};
  std::error_code m_error;
};

}  // namespace snaplift
