#include "foundation/FileWriting.h"

#include <cerrno>
#include <string_view>

#include <fcntl.h>
#include <stdio.h>  // renameat2
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/xattr.h>
#endif

#include "foundation/FileDescriptor.h"
#include "foundation/Path.h"
#include "foundation/RandomName.h"

namespace snaplift {
namespace {

constexpr std::string_view partPrefix = ".snaplift-";
constexpr std::string_view partSuffix = ".part";

constexpr mode_t ordinaryMode = 0666;  // the umask takes from it
constexpr int newFileFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;

#ifdef O_PATH
constexpr int folderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;  // needs no right to list the folder
#else
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif

// The results below are error numbers, 0 for success.

int writeFully(int descriptor, ByteView bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count > 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    } else if (count == 0) {
      return ENOSPC;
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

// Asks for the room of the whole file at once, which keeps it in one piece and takes a fifth off
// the time of writing it. A wish only: many file systems do not know it, and whether the bytes fit
// is for the writes to say.
void reserveRoom([[maybe_unused]] int descriptor, [[maybe_unused]] std::size_t size) {
#ifdef FALLOC_FL_KEEP_SIZE
  if (size > 0) {
    ::fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size));
  }
#endif
}

// Makes the file `name` of `folder`, which must be free, writes it and closes it. After an error
// there is no file.
int writeNewFile(int folder, const std::string& name, ByteView bytes) {
  FileDescriptor file(::openat(folder, name.c_str(), newFileFlags, ordinaryMode));
  if (!file) {
    return errno;
  }
  reserveRoom(file.get(), bytes.size());
  int error = writeFully(file.get(), bytes);
  if (!file.close() && error == 0) {
    error = errno;
  }
  if (error != 0) {
    ::unlinkat(folder, name.c_str(), 0);
  }
  return error;
}

int renameToFreeName(int folder, const std::string& from, const std::string& to) {
#ifdef RENAME_NOREPLACE
  if (::renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) {
    return 0;
  }
  return errno;
#else
  return ENOSYS;
#endif
}

int renameOverOwnClaim(int folder, const std::string& from, const std::string& to) {
  FileDescriptor claim(::openat(folder, to.c_str(), newFileFlags, ordinaryMode));
  if (!claim) {
    return errno;
  }
  // Closed first: FUSE keeps a file that is replaced while it is open under a name of its own.
  claim.close();
  if (::renameat(folder, from.c_str(), folder, to.c_str()) == 0) {
    return 0;
  }
  const int error = errno;
  ::unlinkat(folder, to.c_str(), 0);
  return error == EEXIST ? EIO : error;  // the name is ours: the next one would fare no better
}

// Gives the complete file `part` the name `name` if that is free: by the first way that the file
// system knows. One that does not know a way says so in many different words; EEXIST alone means
// the same everywhere, and any other trouble comes up again in the last way.
int publish(int folder, const std::string& part, const std::string& name) {
  const int error = renameToFreeName(folder, part, name);
  if (error == 0 || error == EEXIST) {
    return error;
  }
  if (::linkat(folder, part.c_str(), folder, name.c_str(), 0) == 0) {
    ::unlinkat(folder, part.c_str(), 0);
    return 0;
  }
  return errno == EEXIST ? EEXIST : renameOverOwnClaim(folder, part, name);
}

FileDescriptor openFolder(const std::string& path) {
  const std::string folder(parentPath(path));
  return FileDescriptor(::open(folder.empty() ? "." : folder.c_str(), folderFlags));
}

// 0 where nothing is called `name`. Asked before the bytes are written, which would otherwise be
// written again for each of the numbered names that are tried.
int freeNameError(int folder, const std::string& name) {
  struct stat status;
  if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
    return EEXIST;
  }
  return errno == ENOENT ? 0 : errno;
}

int createIn(int folder, const std::string& name, ByteView bytes) {
  if (const int error = freeNameError(folder, name)) {
    return error;
  }
  const std::string part = randomName(partPrefix, partSuffix);
  if (const int error = writeNewFile(folder, part, bytes)) {
    return error;
  }
  const int error = publish(folder, part, name);
  if (error != 0) {
    ::unlinkat(folder, part.c_str(), 0);
  }
  return error;
}

// Whether new files of a folder get their permissions from it.
bool givesPermissions(const std::string& folder, const struct stat& status) {
  if ((status.st_mode & S_ISGID) != 0 && status.st_gid != ::getegid()) {
    return true;
  }
#ifdef __linux__
  return ::getxattr(folder.c_str(), "system.posix_acl_default", nullptr, 0) > 0;
#else
  return false;
#endif
}

// Asked first, since an attempt to link waits for whoever is at work in the folder, even in vain.
bool mayLink(const std::string& source, const std::string& folder) {
  struct stat sourceStatus;
  struct stat folderStatus;
  return ::lstat(source.c_str(), &sourceStatus) == 0 &&
         ::stat(folder.c_str(), &folderStatus) == 0 && sourceStatus.st_dev == folderStatus.st_dev &&
         !givesPermissions(folder, folderStatus);
}

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

std::optional<FileError> writeFile(const std::string& path, ByteView bytes) {
  ::unlink(path.c_str());
  if (const int error = writeNewFile(AT_FDCWD, path, bytes)) {
    return FileError::ofSystem(error, path);
  }
  return std::nullopt;
}

std::optional<FileError> createFile(const std::string& path, ByteView bytes) {
  const FileDescriptor folder = openFolder(path);
  const int error =
      folder ? createIn(folder.get(), std::string(lastPathComponent(path)), bytes) : errno;
  if (error != 0) {
    return FileError::ofSystem(error, path);
  }
  return std::nullopt;
}

bool isWritableFolder(const std::string& path) {
  return ::faccessat(AT_FDCWD, path.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

LinkResult linkFile(const std::string& source, const std::string& path) {
  const std::string folder(parentPath(path));
  if (!mayLink(source, folder.empty() ? "." : folder)) {
    return LinkResult::Impossible;
  }
  if (::link(source.c_str(), path.c_str()) == 0) {
    return LinkResult::Linked;
  }
  return errno == EEXIST ? LinkResult::NameTaken : LinkResult::Impossible;
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

}  // namespace snaplift
