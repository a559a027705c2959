#include "foundation/files/InputFile.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/Bytes.h"

namespace snaplift {
namespace {

// A sparse file may claim any size without holding a byte. Above the harmless size, at least one
// byte in sixteen has to exist; a copying tool that turns runs of zeros into holes leaves far more
// of a manifest or a photo.
constexpr std::uint64_t harmlessSizeInBytes = std::uint64_t{1} << 20;
constexpr std::uint64_t maximumSparseness = 16;

constexpr std::size_t compareBufferInBytes = std::size_t{128} << 10;

// O_NONBLOCK: a FIFO without a writer answers at once and is then seen to be no regular file.
constexpr int readFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY;

bool holdsTooLittle(int descriptor, const struct stat& status) {
  const auto size = static_cast<std::uint64_t>(status.st_size);
  const std::uint64_t needed = size / maximumSparseness;
  if (size <= harmlessSizeInBytes || static_cast<std::uint64_t>(status.st_blocks) >= needed / 512) {
    return false;
  }
  // Some file systems count no blocks, or compress: the holes themselves decide.
  std::uint64_t held = 0;
  for (off_t hole = 0; held < needed;) {
    const off_t data = ::lseek(descriptor, hole, SEEK_DATA);
    if (data < 0) {
      break;
    }
    hole = ::lseek(descriptor, data, SEEK_HOLE);
    if (hole <= data) {
      break;
    }
    held += static_cast<std::uint64_t>(hole - data);
  }
  return held < needed || ::lseek(descriptor, 0, SEEK_SET) != 0;
}

}  // namespace

InputFile::InputFile(std::string path) : InputFile(AT_FDCWD, std::move(path)) {}

InputFile::InputFile(int folder, std::string name)
    : m_path(std::move(name)), m_file(::openat(folder, m_path.c_str(), readFlags)) {
  examine();
}

InputFile::InputFile(FileDescriptor file, std::string path)
    : m_path(std::move(path)), m_file(std::move(file)) {
  rewind();
  examine();
}

void InputFile::examine() {
  struct stat status;
  if (!m_file || ::fstat(m_file.get(), &status) != 0) {
    m_errorNumber = errno;
    m_file.close();
    return;
  }
  if (!S_ISREG(status.st_mode) || holdsTooLittle(m_file.get(), status)) {
    m_file.close();
    return;
  }
  m_size = static_cast<std::uint64_t>(status.st_size);
#ifdef __APPLE__
  const timespec modified = status.st_mtimespec;
#else
  const timespec modified = status.st_mtim;
#endif
  m_modificationDate = instantFromUnixTime(modified.tv_sec, modified.tv_nsec);
}

bool InputFile::isMissing() const {
  return m_errorNumber == ENOENT;
}

FileError InputFile::error() const {
  if (isMissing()) {
    return FileError::missing(m_path);
  }
  return m_errorNumber == EACCES ? FileError::forbidden(m_path) : FileError::unreadable(m_path);
}

std::size_t InputFile::read(std::uint8_t* bytes, std::size_t size) const {
  ssize_t count = 0;
  do {
    count = ::read(m_file.get(), bytes, size);
  } while (count < 0 && errno == EINTR);
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t InputFile::fill(Bytes& bytes) const {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const std::size_t count = read(bytes.data() + done, bytes.size() - done);
    if (count == 0) {
      break;
    }
    done += count;
  }
  return done;
}

bool InputFile::isUnchanged() const {
  struct stat status;
  return ::fstat(m_file.get(), &status) == 0 &&
         static_cast<std::uint64_t>(status.st_size) == m_size;
}

bool InputFile::rewind() const {
  return m_file && ::lseek(m_file.get(), 0, SEEK_SET) == 0;
}

bool InputFile::isWhole() const {
  thread_local Bytes own(compareBufferInBytes);
  std::uint64_t done = 0;
  std::size_t count = rewind() ? fill(own) : 0;
  for (; count > 0; count = fill(own)) {
    done += count;
  }
  return done == m_size;
}

bool InputFile::hasBytesOf(const InputFile& other) const {
  if (m_size != other.m_size || !rewind() || !other.rewind()) {
    return false;
  }
  thread_local Bytes own(compareBufferInBytes);
  thread_local Bytes others(compareBufferInBytes);
  for (std::uint64_t done = 0; done < m_size;) {
    const std::size_t count = fill(own);
    if (count == 0 || other.fill(others) != count ||
        !std::ranges::equal(own.view().first(count), others.view().first(count))) {
      return false;
    }
    done += count;
  }
  return true;
}

bool InputFile::holds(ByteView bytes) const {
  if (m_size != bytes.size() || !rewind()) {
    return false;
  }
  thread_local Bytes own(compareBufferInBytes);
  while (!bytes.empty()) {
    const std::size_t count = fill(own);
    if (count == 0 || count > bytes.size() ||
        !std::ranges::equal(own.view().first(count), bytes.first(count))) {
      return false;
    }
    bytes = bytes.subspan(count);
  }
  return true;
}

}  // namespace snaplift
