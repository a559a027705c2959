#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <sys/types.h>

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

// The first `size` bytes of a file that could be read whole, or all of a shorter one.
std::optional<Bytes> readBeginning(const std::string& path, std::size_t size);

// Which folder it is, by whatever path it is reached.
struct FolderIdentity {
  dev_t device;
  ino_t number;
  auto operator<=>(const FolderIdentity&) const = default;
};

// Nothing where there is no such folder. Follows links.
std::optional<FolderIdentity> folderIdentity(const std::string& path);

// A file's content and the date of that same file.
struct DatedContent {
  Bytes bytes;
  Instant modificationDate;
};

// A folder that is held open, for who reads several of its files: the way to it is gone once, and
// all of them are of one folder. Where `path` is no folder, none of its files can be read. `name`
// is a plain file name.
class OpenFolder {
public:
  explicit OpenFolder(std::string path);
  std::optional<FolderIdentity> identity() const;
  std::optional<Bytes> readFile(const std::string& name) const;
  // readFile() of the entry that findFile() finds.
  std::optional<DatedContent> readFoundFile(const std::string& name) const;
  std::optional<FileAttributes> fileAttributes(const std::string& name) const;

private:
  std::string m_path;
  FileDescriptor m_descriptor;
};

// Whether the beginning of a regular file can be read from its disk now, and not only from what the
// system remembers of it. May take as long as the disk does.
bool isReadFromDisk(const std::string& path);

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
