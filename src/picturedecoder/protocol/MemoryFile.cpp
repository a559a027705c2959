#include "picturedecoder/protocol/MemoryFile.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>

namespace snaplift {
namespace {

FileDescriptor newFile() {
  return FileDescriptor(::memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING));
}

FileDescriptor sealed(FileDescriptor file, int seals) {
  const bool done =
      ::fcntl(file.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL | seals) == 0;
  return done ? std::move(file) : FileDescriptor();
}

// Repeats `call(done)`, which moves some bytes, until all are moved.
template <typename Call>
bool moveAll(std::size_t size, Call call) {
  for (std::size_t done = 0; done < size;) {
    const ssize_t count = call(done);
    if (count == 0 || (count < 0 && errno != EINTR)) {
      return false;
    }
    done += count > 0 ? static_cast<std::size_t>(count) : 0;
  }
  return true;
}

}  // namespace

FileDescriptor sealedFileOf(ByteView bytes) {
  FileDescriptor file = newFile();
  const bool written = file && moveAll(bytes.size(), [&](std::size_t done) {
                         return ::write(file.get(), bytes.data() + done, bytes.size() - done);
                       });
  return written ? sealed(std::move(file), F_SEAL_WRITE) : FileDescriptor();
}

FileDescriptor sealedSpace(std::size_t size) {
  FileDescriptor file = newFile();
  const bool sized = file && ::ftruncate(file.get(), static_cast<off_t>(size)) == 0;
  return sized ? sealed(std::move(file), 0) : FileDescriptor();
}

bool readFromStart(const FileDescriptor& file, std::span<std::uint8_t> target) {
  return moveAll(target.size(), [&](std::size_t done) {
    return ::pread(file.get(), target.data() + done, target.size() - done,
                   static_cast<off_t>(done));
  });
}

std::optional<MappedFile> MappedFile::map(const FileDescriptor& file, Access access) {
  const off_t size = ::lseek(file.get(), 0, SEEK_END);
  if (size <= 0) {
    return std::nullopt;
  }
  const bool writes = access == Access::Write;
  void* memory =
      ::mmap(nullptr, static_cast<std::size_t>(size), writes ? PROT_READ | PROT_WRITE : PROT_READ,
             writes ? MAP_SHARED : MAP_PRIVATE, file.get(), 0);
  if (memory == MAP_FAILED) {
    return std::nullopt;
  }
  return MappedFile({static_cast<std::uint8_t*>(memory), static_cast<std::size_t>(size)});
}

MappedFile::MappedFile(MappedFile&& other) noexcept
    : m_bytes(std::exchange(other.m_bytes, std::span<std::uint8_t>())) {}

MappedFile::~MappedFile() {
  if (!m_bytes.empty()) {
    ::munmap(m_bytes.data(), m_bytes.size());
  }
}

}  // namespace snaplift
