#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "foundation/Bytes.h"
#include "foundation/Time.h"
#include "foundation/files/FileDescriptor.h"

namespace snaplift {

// Reading of a file system that is not to be trusted: a backup may hold a FIFO, a device or a link
// to anywhere in the place of any file. Nothing here writes, waits, or follows a link at the last
// component of a path. Failure is an absent result; why something could not be read does not matter
// to a reader of backups. All functions are safe to call from any thread.

enum class FileType { Regular, Folder, Link, Other };

struct FileAttributes {
  FileType type;
  std::uint64_t size;  // in bytes
  Instant modificationDate;
};

// The attributes of the entry itself, not of the target of a link.
std::optional<FileAttributes> fileAttributes(const std::string& path);
// The same; `error` says why there are none.
std::optional<FileAttributes> fileAttributes(const std::string& path, std::error_code& error);

// Whether the process has the right to read the file; links are followed.
bool mayRead(const std::string& path);

// The whole content of a regular file. Nothing for every other kind of entry, at once; nothing for
// a file that shrinks or grows while it is read, for one of more than 2 GiB, and for one of more
// than 1 MiB that is nearly all holes: it would cost memory and time for bytes that nobody wrote.
// `reuse` is a buffer that is no longer needed: its storage is taken where it is large enough, so
// that a caller with many files allocates once.
std::optional<Bytes> readFile(const std::string& path, Bytes reuse = {});

// A folder that is held open, for who reads thousands of its files: the way to it is gone once.
// Where `path` is no folder, none of its files can be read. `name` is a plain file name.
class OpenFolder {
public:
  explicit OpenFolder(const std::string& path);
  std::optional<Bytes> readFile(const std::string& name) const;
  std::optional<FileAttributes> fileAttributes(const std::string& name) const;

private:
  FileDescriptor m_descriptor;
};

// A file's content and the date of that same file.
struct DatedContent {
  Bytes bytes;
  Instant modificationDate;
};

// readFile() of the entry that findFile() finds, in fewer system calls: every folder of a backup
// root is asked.
std::optional<DatedContent> readFoundFile(const std::string& folder, std::string_view name);

// Whether `path` is a folder that the process may list; links are followed.
bool isReadableFolder(const std::string& path);

// The names of a folder's direct entries, hidden ones included, without "." and "..", in the order
// of the file system; as the bytes that stand there. Empty where the folder cannot be listed.
// `folder` itself may be a link.
std::vector<std::string> folderEntries(const std::string& folder);

// Those of folderEntries() that are folders themselves; a link to one is none. `error` is set where
// the folder could not be read to its end; the answer is then what was read.
std::vector<std::string> subfolders(const std::string& folder, std::error_code& error);

// The path of the entry of `folder` that is called `name`, but for letter case: the exact name
// where it exists, else the name with its first letter in upper case ("Info.plist" for
// "info.plist"), and only then the first in byte order of those entries that equal it ignoring
// case. Listing a folder of 100,000 files is the last resort. Where there is none, `folder` joined
// with `name`.
std::string findFile(const std::string& folder, std::string_view name);

}  // namespace snaplift
