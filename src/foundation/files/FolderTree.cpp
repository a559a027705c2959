#include "foundation/files/FolderTree.h"

#include <algorithm>
#include <cerrno>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#ifdef __linux__
#include <linux/openat2.h>
#include <sys/syscall.h>
#endif

namespace snaplift {
namespace {

constexpr int listingFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK;

std::error_code lastError() {
  return {errno, std::generic_category()};
}

// The way of systems without a call that refuses links and mounts in every component of a path:
// one component after the other.
int openStepByStep(int top, dev_t device, std::string_view path) {
  FileDescriptor folder(::openat(top, ".", listingFlags));
  while (folder && !path.empty()) {
    const std::string name(path.substr(0, path.find('/')));
    path.remove_prefix(std::min(path.size(), name.size() + 1));
    FileDescriptor next(::openat(folder.get(), name.c_str(), listingFlags | O_NOFOLLOW));
    struct stat status;
    if (next && (::fstat(next.get(), &status) != 0 || status.st_dev != device)) {
      errno = EXDEV;
      return -1;
    }
    folder = std::move(next);
  }
  return folder.release();
}

bool isFolder(int folder, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) {
    return entry.d_type == DT_DIR;
  }
  struct stat status;
  return ::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISDIR(status.st_mode);
}

}  // namespace

FolderTree::FolderTree(const std::string& top) : m_top(::open(top.c_str(), listingFlags)) {
  struct stat status;
  if (m_top && ::fstat(m_top.get(), &status) == 0) {
    m_identity = {status.st_dev, status.st_ino};
  } else {
    m_error = lastError();
  }
}

FileDescriptor FolderTree::open(const std::string& path) const {
  if (path.empty()) {
    return FileDescriptor(::openat(m_top.get(), ".", listingFlags));
  }
#ifdef SYS_openat2
  open_how how{};
  how.flags = listingFlags | O_NOFOLLOW;
  how.resolve = RESOLVE_NO_SYMLINKS | RESOLVE_NO_XDEV | RESOLVE_BENEATH;
  const long folder = ::syscall(SYS_openat2, m_top.get(), path.c_str(), &how, sizeof how);
  // Some sandboxes forbid the call; a folder without permission says so in the other way again.
  if (folder >= 0 || (errno != ENOSYS && errno != EPERM)) {
    return FileDescriptor(static_cast<int>(folder));
  }
#endif
  return FileDescriptor(openStepByStep(m_top.get(), m_identity.device, path));
}

std::error_code FolderTree::visitEntries(const std::string& path, const Visitor& visit) const {
  const int folder = open(path).release();
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(folder < 0 ? nullptr : ::fdopendir(folder),
                                                    ::closedir);
  if (!listing) {
    return lastError();
  }
  for (errno = 0; const dirent* entry = ::readdir(listing.get()); errno = 0) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != ".." && !visit(name, isFolder(folder, *entry))) {
      return {};
    }
  }
  return lastError();
}

}  // namespace snaplift
