#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "foundation/Bytes.h"
#include "foundation/files/FileDescriptor.h"

namespace snaplift {

// Files that exist in memory only (memfd_create), to hand bytes to another process. Their size is
// sealed: neither side can make the other's access fail (SIGBUS) or take memory that was not asked
// for.

// A file of these bytes that nobody can change any more; invalid where there is no memory for it.
FileDescriptor sealedFileOf(ByteView bytes);
// A file of `size` bytes that can be written and will take memory only where it is written.
FileDescriptor sealedSpace(std::size_t size);
// Reads the file's first bytes into `target`, without mapping it: whoever else may still write
// there changes nothing afterwards. False where there are fewer.
bool readFromStart(const FileDescriptor& file, std::span<std::uint8_t> target);

// The whole of a memory file, mapped as long as this object lives.
class MappedFile {
public:
  enum class Access { Read, Write };

  // Nothing for an empty file, or where the address space has no room for it.
  static std::optional<MappedFile> map(const FileDescriptor& file, Access access);
  MappedFile(MappedFile&& other) noexcept;
  MappedFile& operator=(MappedFile&&) = delete;
  ~MappedFile();

  std::span<std::uint8_t> bytes() const { return m_bytes; }

private:
  explicit MappedFile(std::span<std::uint8_t> bytes) : m_bytes(bytes) {}

  std::span<std::uint8_t> m_bytes;
};

}  // namespace snaplift
