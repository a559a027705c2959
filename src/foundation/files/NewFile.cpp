#include "foundation/files/NewFile.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <stdio.h>  // renameat2
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/Path.h"

namespace snaplift {
namespace {

constexpr mode_t ordinaryMode = 0666;  // the umask takes from it
constexpr int newFileFlags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;

constexpr int maximumPartAttempts = 16;

// What one call copies or moves at most. The buffer stays in the processor's cache between the read
// and the write.
constexpr std::size_t largestCopyInBytes = std::size_t{64} << 20;
constexpr std::size_t copyBufferInBytes = std::size_t{256} << 10;

// Programs that serve a file system (exFAT) take both times of a file or none.
constexpr timespec accessedNow{0, UTIME_NOW};

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
void reserveRoom([[maybe_unused]] int descriptor, [[maybe_unused]] std::uint64_t size) {
#ifdef FALLOC_FL_KEEP_SIZE
  if (size > 0) {
    ::fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size));
  }
#endif
}

// Has the kernel copy up to `size` bytes from where the files stand to where they then stand, and
// answers how many it did. What it cannot copy, for whatever reason, is left to who reads and
// writes: an error comes up again there.
std::uint64_t copyInKernel([[maybe_unused]] int from, [[maybe_unused]] int to,
                           [[maybe_unused]] std::uint64_t size) {
  std::uint64_t done = 0;
#ifdef __linux__
  while (done < size) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(size - done, largestCopyInBytes));
    const ssize_t count = ::copy_file_range(from, nullptr, to, nullptr, wanted, 0);
    if (count > 0) {
      done += static_cast<std::uint64_t>(count);
    } else if (count == 0 || errno != EINTR) {
      break;
    }
  }
#endif
  return done;
}

int renameToFreeName(int folder, const std::string& from, const std::string& to) {
#ifdef RENAME_NOREPLACE
  return ::renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0 ? 0 : errno;
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

timespec timespecOf(Instant instant) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(instant);
  timespec time{};
  time.tv_sec = static_cast<time_t>(seconds.time_since_epoch().count());
  time.tv_nsec = static_cast<long>(std::chrono::nanoseconds(instant - seconds).count());
  return time;
}

std::optional<FileError> makeFile(const OutputFolder& folder, std::string name, ByteView bytes) {
  NewFile file(folder, std::move(name));
  auto error = file.error();
  if (!error) {
    error = file.write(bytes);
  }
  if (!error) {
    error = file.seal();
  }
  return error ? error : file.publish(file.name());
}

std::string pathOfDescriptor(int descriptor) {
  return "/proc/self/fd/" + std::to_string(descriptor);
}

}  // namespace

NewFile::NewFile(const OutputFolder& folder, std::string name)
    : m_folder(&folder), m_name(std::move(name)) {
  const int error = folder.errorNumber() != 0 ? folder.errorNumber() : begin();
  if (error != 0) {
    m_error = errorOf(error);
  }
}

NewFile::~NewFile() {
  if (m_file && !m_part.empty()) {
    ::unlinkat(m_folder->descriptor(), m_part.c_str(), 0);
  }
}

FileError NewFile::errorOf(int errorNumber) const {
  return FileError::ofSystem(errorNumber, joinPath(m_folder->path(), m_name));
}

// A file system says in many different words that it knows no files without a name; whatever is
// wrong beyond that comes up again with the part.
int NewFile::begin() {
#ifdef O_TMPFILE
  if (m_folder->takesNamelessFiles()) {
    m_file = FileDescriptor(
        ::openat(m_folder->descriptor(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, ordinaryMode));
  }
#endif
  return m_file ? 0 : beginPart();
}

// The lock says that the part belongs to a process that lives. Who looks for abandoned ones may
// take it in the moment before it is locked; another one is another chance. Where there are no
// locks, nobody takes it for abandoned.
int NewFile::beginPart() {
  for (int attempt = 0; attempt < maximumPartAttempts; ++attempt) {
    std::string part = newPartName();
    FileDescriptor file(::openat(m_folder->descriptor(), part.c_str(), newFileFlags, ordinaryMode));
    if (!file) {
      return errno;
    }
    const bool isLockTaken = ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    struct stat status;
    if (!isLockTaken && (::fstat(file.get(), &status) != 0 || status.st_nlink > 0)) {
      m_part = std::move(part);
      m_file = std::move(file);
      return 0;
    }
  }
  return EBUSY;
}

std::optional<FileError> NewFile::write(ByteView bytes) {
  reserveRoom(m_file.get(), bytes.size());
  if (const int error = writeFully(m_file.get(), bytes)) {
    return errorOf(error);
  }
  m_size += bytes.size();
  return std::nullopt;
}

std::optional<FileError> NewFile::copy(InputFile& source) {
  const std::uint64_t size = source.size();
  std::uint64_t done = copyInKernel(source.descriptor(), m_file.get(), size);
  if (done == 0) {
    reserveRoom(m_file.get(), size);
  }
  thread_local Bytes buffer(copyBufferInBytes);
  while (done < size) {
    const std::size_t count =
        source.read(buffer.data(),
                    static_cast<std::size_t>(std::min<std::uint64_t>(size - done, buffer.size())));
    if (count == 0) {
      break;
    }
    if (const int error = writeFully(m_file.get(), buffer.view().first(count))) {
      return errorOf(error);
    }
    done += count;
  }
  m_size += done;
  return done == size && source.isUnchanged() ? std::nullopt : std::optional(source.error());
}

std::optional<FileError> NewFile::seal(std::optional<Instant> modificationDate) {
  // Closed once through a second descriptor: a file system that writes late says then what it could
  // not keep, and the file is still open to get its name.
  FileDescriptor second(::fcntl(m_file.get(), F_DUPFD_CLOEXEC, 0));
  if (!second || !second.close()) {
    return errorOf(errno);
  }
  if (modificationDate) {
    const timespec times[2] = {accessedNow, timespecOf(*modificationDate)};
    ::futimens(m_file.get(), times);
  }
  return std::nullopt;
}

std::optional<FileError> NewFile::publish(const std::string& name) {
  m_name = name;
  int error = 0;
  if (m_part.empty()) {
    if (::linkat(AT_FDCWD, pathOfDescriptor(m_file.get()).c_str(), m_folder->descriptor(),
                 name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
      error = errno == EEXIST ? EEXIST : becomePart();
    }
  }
  if (error == 0 && !m_part.empty()) {
    error = publishPart(name);
  }
  if (error != 0) {
    return errorOf(error);
  }
  m_part.clear();
  return std::nullopt;
}

// The file system makes files without a name and does not link them, or the system hides /proc.
int NewFile::becomePart() {
  FileDescriptor nameless = std::move(m_file);
  if (const int error = beginPart()) {
    m_file = std::move(nameless);
    return error;
  }
  struct stat status;
  InputFile source(std::move(nameless), m_folder->path());
  if (::fstat(source.descriptor(), &status) != 0) {
    return errno;
  }
  m_size = 0;
  if (const auto error = copy(source)) {
    return error->domain == posixErrorDomain ? error->code : EIO;
  }
  const timespec times[2] = {accessedNow, status.st_mtim};
  ::futimens(m_file.get(), times);
  m_folder->refuseNamelessFiles();
  return 0;
}

// By the first way that the file system knows. One that does not know a way says so in many
// different words; EEXIST alone means the same everywhere, and any other trouble comes up again in
// the last way.
int NewFile::publishPart(const std::string& name) {
  const int folder = m_folder->descriptor();
  const int error = renameToFreeName(folder, m_part, name);
  if (error == 0 || error == EEXIST) {
    return error;
  }
  if (::linkat(folder, m_part.c_str(), folder, name.c_str(), 0) == 0) {
    ::unlinkat(folder, m_part.c_str(), 0);
    return 0;
  }
  return errno == EEXIST ? EEXIST : renameOverOwnClaim(folder, m_part, name);
}

InputFile NewFile::content() const {
  return InputFile(FileDescriptor(::fcntl(m_file.get(), F_DUPFD_CLOEXEC, 0)),
                   joinPath(m_folder->path(), m_name));
}

std::optional<FileError> createFile(const std::string& path, ByteView bytes) {
  return makeFile(OutputFolder(std::string(parentPath(path))), std::string(lastPathComponent(path)),
                  bytes);
}

std::optional<FileError> replaceFile(const std::string& path, ByteView bytes) {
  const OutputFolder folder{std::string(parentPath(path))};
  const std::string part = newPartName();
  const std::string name(lastPathComponent(path));
  auto error = makeFile(folder, part, bytes);
  if (!error &&
      ::renameat(folder.descriptor(), part.c_str(), folder.descriptor(), name.c_str()) != 0) {
    error = FileError::ofSystem(errno, path);
    ::unlinkat(folder.descriptor(), part.c_str(), 0);
  }
  return error;
}

}  // namespace snaplift
