#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/Bytes.h"
#include "foundation/Time.h"
#include "foundation/files/FileDescriptor.h"
#include "foundation/files/FileError.h"
#include "foundation/files/InputFile.h"
#include "foundation/files/OutputFolder.h"

namespace snaplift {

// A file on its way into a folder that belongs to the user. Its bytes are written while it has no
// name (O_TMPFILE), and it gets one when it is whole: a name stands for the whole file or for
// nothing, at every moment, and whoever kills the process leaves nothing behind. Where a file
// system knows no such file, the bytes go into a hidden part, ".snaplift-<16 digits>.part", which
// is renamed; a kill can leave the part. On a file system that has neither links nor a rename that
// refuses a taken name (FAT and exFAT through FUSE) the name is claimed by an empty file, and the
// part is renamed over it: a kill between these two system calls leaves the empty file too.
//
// Nothing is ever replaced: a name that is taken (by a file, a folder, a link, in any letter case
// where the file system folds it) is the error FileError::fileExists, and the next name may be
// tried: the bytes are written once. Every write and close is checked. The file has the ordinary
// permissions of the process, or those that its folder gives to new files.
//
// For one thread at a time; many of them may work in one folder, in any number of processes.
class NewFile {
public:
  // `name` is what the file is meant to be called; errors bear it.
  NewFile(const OutputFolder& folder, std::string name);
  NewFile(NewFile&& other) noexcept = default;
  NewFile& operator=(NewFile&&) = delete;
  ~NewFile();  // what has got no name is gone

  // Why the file could not be begun.
  const std::optional<FileError>& error() const { return m_error; }

  // Adds bytes. To be called after error() was found absent.
  [[nodiscard]] std::optional<FileError> write(ByteView bytes);

  // Adds the whole content of `source`: the kernel copies it, and shares the blocks where the file
  // system can. A source that cannot be read to its end, or that shrinks or grows meanwhile, is the
  // error that InputFile::error() names.
  [[nodiscard]] std::optional<FileError> copy(InputFile& source);

  // Ends the writing: hears of what the system could not keep, and sets the file's date, if one is
  // given and the file system takes it. Before publish().
  [[nodiscard]] std::optional<FileError> seal(std::optional<Instant> modificationDate = {});

  // Gives the file the name `name`, which must be free.
  [[nodiscard]] std::optional<FileError> publish(const std::string& name);

  const std::string& name() const { return m_name; }  // as it was meant, or published
  std::uint64_t size() const { return m_size; }
  // The bytes that were written, from the beginning.
  InputFile content() const;

private:
  FileError errorOf(int errorNumber) const;
  int begin();
  int beginPart();
  int becomePart();
  int publishPart(const std::string& name);

  const OutputFolder* m_folder;
  std::string m_name;
  std::string m_part;     // the name of the part; empty where the file has no name at all
  FileDescriptor m_file;  // open for reading, too
  std::uint64_t m_size = 0;
  std::optional<FileError> m_error;
};

// Makes `path` with `bytes` by way of a NewFile.
[[nodiscard]] std::optional<FileError> createFile(const std::string& path, ByteView bytes);

// The same, in the place of a file that may be there: at every moment the old or the new one is. A
// kill can leave the new one beside it as a hidden part.
[[nodiscard]] std::optional<FileError> replaceFile(const std::string& path, ByteView bytes);

}  // namespace snaplift
