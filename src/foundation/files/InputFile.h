#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/Bytes.h"
#include "foundation/Time.h"
#include "foundation/files/FileDescriptor.h"
#include "foundation/files/FileError.h"

namespace snaplift {

// A regular file that is open to be read whole, by the rules of File.h: never waits, follows no
// link at the end of the path. One of more than 1 MiB that is nearly all holes counts as
// unreadable: it would cost time and room for bytes that nobody wrote. For one thread.
class InputFile {
public:
  explicit InputFile(std::string path);
  // `name` in the open folder `folder`.
  InputFile(int folder, std::string name);
  // A file that is open already; its place goes to the beginning.
  InputFile(FileDescriptor file, std::string path);

  explicit operator bool() const { return static_cast<bool>(m_file); }

  // Whether there is nothing of that name.
  bool isMissing() const;

  // Why it is not open; of an open file, that it could not be read whole.
  FileError error() const;

  int descriptor() const { return m_file.get(); }
  std::uint64_t size() const { return m_size; }  // when it was opened
  Instant modificationDate() const { return m_modificationDate; }

  // Reads on. The answer is the number of bytes, 0 at the end and after an error.
  std::size_t read(std::uint8_t* bytes, std::size_t size) const;

  // Reads on until `bytes` is full or the file ends. The answer is the number of bytes.
  std::size_t fill(Bytes& bytes) const;

  // Whether the file is still as long as it was when it was opened.
  bool isUnchanged() const;

  // Whether the file can be read to its end, as long as it was. Reads from the beginning.
  bool isWhole() const;

  // Whether the file holds the same bytes as another, or these. Reads from the beginning.
  bool hasBytesOf(const InputFile& other) const;
  bool holds(ByteView bytes) const;

private:
  void examine();
  bool rewind() const;

  std::string m_path;
  FileDescriptor m_file;
  int m_errorNumber = 0;
  std::uint64_t m_size = 0;
  Instant m_modificationDate;
};

}  // namespace snaplift
