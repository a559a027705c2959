#include "foundation/files/OutputFolder.h"

#include <cerrno>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "foundation/files/File.h"
#include "foundation/files/RandomName.h"

namespace snaplift {
namespace {

constexpr std::string_view partPrefix = ".snaplift-";
constexpr std::string_view partSuffix = ".part";

#ifdef O_PATH
constexpr int folderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;  // needs no right to list the folder
#else
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif

// Calls again what a signal interrupted.
int errorOf(int (*call)(int), int descriptor) {
  while (call(descriptor) != 0) {
    if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

int flush(const FileDescriptor& folder) {
#ifdef __linux__
  if (const int error = errorOf(::syncfs, folder.get())) {
    return error;
  }
#else
  ::sync();
#endif
  // The system does not pass syncfs on to the program that serves a file system through FUSE; what
  // that program still holds (tables of FAT and exFAT) it writes for a folder's fsync. Not every
  // file system knows that for folders.
  const int error = errorOf(::fsync, folder.get());
  return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP ? 0 : error;
}

}  // namespace

OutputFolder::OutputFolder(std::string path)
    : m_path(std::move(path)),
      m_descriptor(::open(m_path.empty() ? "." : m_path.c_str(), folderFlags)),
      m_errorNumber(m_descriptor ? 0 : errno) {
  struct stat status;
  if (m_descriptor && ::fstat(m_descriptor.get(), &status) == 0) {
    m_disk = status.st_dev;
  }
}

int OutputFolder::errorOfPlace() const {
  struct stat status;
  if (m_disk && ::stat(m_path.empty() ? "." : m_path.c_str(), &status) != 0) {
    return errno;
  }
  return m_disk && status.st_dev != *m_disk ? ENODEV : 0;
}

bool OutputFolder::isUsable() const {
  if (errorOfPlace() != 0) {
    return false;
  }
  const std::string name = newPartName();
  const FileDescriptor probe(::openat(m_descriptor.get(), name.c_str(),
                                      O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  return probe && ::unlinkat(m_descriptor.get(), name.c_str(), 0) == 0;
}

void OutputFolder::removeAbandonedParts() const {
  for (const std::string& name : folderEntries(m_path)) {
    if (!isPartName(name)) {
      continue;
    }
    const FileDescriptor part(::openat(m_descriptor.get(), name.c_str(),
                                       O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat status;
    if (part && ::fstat(part.get(), &status) == 0 && S_ISREG(status.st_mode) &&
        status.st_uid == ::geteuid() && ::flock(part.get(), LOCK_EX | LOCK_NB) == 0) {
      ::unlinkat(m_descriptor.get(), name.c_str(), 0);
    }
  }
}

std::optional<FileError> flushFileSystem(const std::string& folder) {
  const FileDescriptor open(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!open && errno == EACCES) {  // a drop box: files may be made, but not listed
    ::sync();
    return std::nullopt;
  }
  if (const int error = open ? flush(open) : errno) {
    return FileError::ofSystem(error, folder);
  }
  return std::nullopt;
}

std::optional<std::uint64_t> freeBytes(const std::string& folder) {
  struct statvfs status;
  if (::statvfs(folder.c_str(), &status) != 0 || status.f_blocks == 0) {
    return std::nullopt;
  }
  return std::uint64_t{status.f_bavail} * status.f_frsize;
}

bool isWritableFolder(const std::string& path) {
  return ::faccessat(AT_FDCWD, path.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

std::string newPartName() {
  return randomName(partPrefix, partSuffix);
}

bool isPartName(std::string_view name) {
  return name.ends_with(partSuffix) &&
         isRandomName(name.substr(0, name.size() - partSuffix.size()), partPrefix);
}

}  // namespace snaplift
