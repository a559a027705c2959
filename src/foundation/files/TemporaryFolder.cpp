#include "foundation/files/TemporaryFolder.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/File.h"
#include "foundation/files/Path.h"
#include "foundation/files/RandomName.h"

namespace snaplift {
namespace {

constexpr std::string_view namePrefix = "snaplift-";

// A cleaner may take a folder in the moment between its making and its locking; the next name is
// another chance.
constexpr int maximumMakingAttempts = 16;

// The program puts files into its folder and no folders. What somebody else put there is removed
// too, down to this depth.
constexpr int maximumDepth = 32;

// A listing may pass over entries while others are removed, and a file that was about to be made
// when the removal began comes after it.
constexpr int maximumPasses = 4;

FileDescriptor openFolder(int parent, const char* name) {
  return FileDescriptor(
      ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
}

bool lockNow(const FileDescriptor& folder) {
  return ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0;
}

bool isSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

using Listing = std::unique_ptr<DIR, int (*)(DIR*)>;

// The entries of `folder`, through a descriptor of the listing's own, which it moves and closes.
Listing listingOf(const FileDescriptor& folder) {
  const int descriptor =
      ::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  Listing listing(descriptor < 0 ? nullptr : ::fdopendir(descriptor), ::closedir);
  if (!listing && descriptor >= 0) {
    ::close(descriptor);
  }
  return listing;
}

void removeEntries(const FileDescriptor& folder, dev_t device, int depth) {
  const Listing listing = listingOf(folder);
  if (!listing) {
    return;
  }
  while (const dirent* entry = ::readdir(listing.get())) {
    const std::string_view name = entry->d_name;
    if (name == "." || name == ".." || ::unlinkat(folder.get(), entry->d_name, 0) == 0 ||
        depth == 0) {
      continue;
    }
    const FileDescriptor child = openFolder(folder.get(), entry->d_name);
    struct stat status;
    if (child && ::fstat(child.get(), &status) == 0 && status.st_dev == device) {
      removeEntries(child, device, depth - 1);
      ::unlinkat(folder.get(), entry->d_name, AT_REMOVEDIR);
    }
  }
}

// Empties and removes the folder that is open as `folder` and stands at `path`.
void removeFolder(const FileDescriptor& folder, const std::string& path) {
  struct stat open;
  struct stat named;
  if (::fstat(folder.get(), &open) != 0 || ::lstat(path.c_str(), &named) != 0 ||
      !isSameFile(open, named)) {
    return;
  }
  // Under another name nobody finds it: threads that go on exporting make no more files in it.
  const std::string hidden = joinPath(parentPath(path), randomName(namePrefix));
  if (::rename(path.c_str(), hidden.c_str()) != 0) {
    return;
  }
  for (int pass = 0; pass < maximumPasses; ++pass) {
    removeEntries(folder, open.st_dev, maximumDepth);
    if (::rmdir(hidden.c_str()) == 0) {
      return;
    }
  }
}

void removeAbandonedFolders(const std::string& parent) {
  for (const std::string& name : folderEntries(parent)) {
    if (!isRandomName(name, namePrefix)) {
      continue;
    }
    const std::string path = joinPath(parent, name);
    const FileDescriptor folder = openFolder(AT_FDCWD, path.c_str());
    struct stat status;
    if (folder && ::fstat(folder.get(), &status) == 0 && status.st_uid == ::geteuid() &&
        lockNow(folder)) {
      removeFolder(folder, path);
    }
  }
}

TemporaryFolderVeto vetoOfProcess = nullptr;

// Whether `folder` may hold the temporary folder: an absolute path that nobody objects to.
bool isFitParent(const char* folder) {
  std::error_code error;
  const auto resolved = std::filesystem::canonical(folder, error);
  return folder[0] == '/' && !error && (vetoOfProcess == nullptr || !vetoOfProcess(resolved));
}

std::vector<std::string> standardParents() {
  std::vector<std::string> parents;
  const char* chosen = std::getenv("TMPDIR");
  if (chosen != nullptr && isFitParent(chosen)) {
    parents.emplace_back(chosen);
  }
  parents.emplace_back("/var/tmp");
  return parents;
}

// Never destroyed: threads that are still at work while the process exits may ask for the path.
std::atomic<TemporaryFolder*> processFolder = nullptr;

}  // namespace

TemporaryFolder::TemporaryFolder(const std::vector<std::string>& parents) : m_owner(::getpid()) {
  for (const std::string& parent : parents) {
    removeAbandonedFolders(parent);
  }
  for (const std::string& parent : parents) {
    if (makeIn(parent)) {
      return;
    }
  }
}

bool TemporaryFolder::makeIn(const std::string& parent) {
  for (int attempt = 0; attempt < maximumMakingAttempts; ++attempt) {
    std::string path = joinPath(parent, randomName(namePrefix));
    if (::mkdir(path.c_str(), S_IRWXU) != 0) {
      if (errno == EEXIST) {
        continue;
      }
      return false;
    }
    FileDescriptor folder = openFolder(AT_FDCWD, path.c_str());
    // Without locks (some network file systems) the folder serves all the same; nobody can then
    // prove it abandoned, so it is never taken away from its owner.
    const bool isMine = folder && (lockNow(folder) || errno != EWOULDBLOCK);
    struct stat open;
    struct stat named;
    if (isMine && ::fstat(folder.get(), &open) == 0 && ::lstat(path.c_str(), &named) == 0 &&
        isSameFile(open, named)) {
      m_path = std::move(path);
      m_folder = std::move(folder);
      return true;
    }
    ::rmdir(path.c_str());
  }
  return false;
}

void TemporaryFolder::remove() {
  const std::lock_guard lock(m_removal);
  if (m_folder && m_owner == ::getpid()) {
    removeFolder(m_folder, m_path);
    m_folder.close();
  }
}

void setTemporaryFolderVeto(TemporaryFolderVeto veto) {
  vetoOfProcess = veto;
}

void removeAbandonedTemporaryFolders() {
  for (const std::string& parent : standardParents()) {
    removeAbandonedFolders(parent);
  }
}

const std::string& temporaryFolder() {
  static const TemporaryFolder* const folder = [] {
    auto* const made = new TemporaryFolder(standardParents());
    processFolder = made;
    std::atexit(removeTemporaryFolder);
    return made;
  }();
  return folder->path();
}

void removeTemporaryFolder() {
  if (TemporaryFolder* const folder = processFolder) {
    folder->remove();
  }
}

}  // namespace snaplift
