#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "foundation/files/FileDescriptor.h"
#include "foundation/files/FileError.h"

namespace snaplift {

// A folder that is held open while files are made in it: whatever happens to the path meanwhile,
// they all arrive in one place, and a stick cannot be ejected under them. Links in the path are
// followed. All functions are safe to call from any thread.
class OutputFolder {
public:
  explicit OutputFolder(std::string path);

  const std::string& path() const { return m_path; }
  // Why the folder cannot be opened; 0 where it is open.
  int errorNumber() const { return m_errorNumber; }
  int descriptor() const { return m_descriptor.get(); }

  // Whether a file can be made in the folder now. Makes one, and removes it.
  bool isUsable() const;

  // Why its path does not lead to the disk of this folder any more: an unmounted one lives on while
  // it is open, and another folder stands in its place. 0 where it does.
  int errorOfPlace() const;

  // Whether the file system knows files without a name, as far as it has been seen.
  bool takesNamelessFiles() const { return m_takesNamelessFiles; }
  void refuseNamelessFiles() const { m_takesNamelessFiles = false; }

  // Removes what a process that was killed has left: the parts (see NewFile) of this user that no
  // process holds any more.
  void removeAbandonedParts() const;

private:
  std::string m_path;
  FileDescriptor m_descriptor;
  int m_errorNumber;
  std::optional<std::uint64_t> m_disk;
  mutable std::atomic<bool> m_takesNamelessFiles = true;
};

// Returns when everything that was written so far on the file system of `folder`, by whomever, is
// on its disk: once for a whole export, since waiting for the disk after each photo costs more than
// writing it. The error is that of the disk, which may have come up in the background before, or
// says that the folder is gone. Blocks as long as the disk takes, on a slow stick for a minute.
[[nodiscard]] std::optional<FileError> flushFileSystem(const std::string& folder);

// How many bytes the process may still write into the file system of `folder`; absent where that is
// not known.
std::optional<std::uint64_t> freeBytes(const std::string& folder);

// Whether the process may make files in the folder at `path`; links are followed.
bool isWritableFolder(const std::string& path);

// The name of a part, and whether a name is that of one.
std::string newPartName();
bool isPartName(std::string_view name);

}  // namespace snaplift
