#include "foundation/files/File.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/InputFile.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

// No file of a backup that is read whole comes near this: a photo has some megabytes, the manifest
// of a million files 200.
constexpr std::uint64_t maximumFileSizeInBytes = std::uint64_t{1} << 31;

Instant modificationDateOf(const struct stat& status) {
#ifdef __APPLE__
  return instantFromUnixTime(status.st_mtimespec.tv_sec, status.st_mtimespec.tv_nsec);
#else
  return instantFromUnixTime(status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
#endif
}

FileType typeOf(mode_t mode) {
  return S_ISREG(mode)   ? FileType::Regular
         : S_ISDIR(mode) ? FileType::Folder
         : S_ISLNK(mode) ? FileType::Link
                         : FileType::Other;
}

std::optional<FolderIdentity> identityOf(const struct stat& status) {
  return S_ISDIR(status.st_mode) ? std::optional(FolderIdentity{status.st_dev, status.st_ino})
                                 : std::nullopt;
}

std::optional<FileAttributes> attributesOf(const std::string& path, int folder = AT_FDCWD) {
  struct stat status;
  if (::fstatat(folder, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return std::nullopt;
  }
  return FileAttributes{typeOf(status.st_mode), static_cast<std::uint64_t>(status.st_size),
                        modificationDateOf(status)};
}

#ifdef O_PATH
constexpr int openForSearch = O_PATH;  // asks for no permission to list the folder
#else
constexpr int openForSearch = O_RDONLY;
#endif

// Reads `size` bytes, which must be all that there are. One byte more is asked for: the one call
// that a small file takes then also tells that the file has not grown.
bool readExactly(const InputFile& file, std::size_t size, Bytes& bytes) {
  bytes.resize(size + 1);
  const std::size_t count = file.fill(bytes);
  bytes.resize(std::min(count, size));
  return count == size;
}

std::optional<DatedContent> contentOf(const InputFile& file, Bytes reuse) {
  if (!file || file.size() > maximumFileSizeInBytes ||
      !readExactly(file, static_cast<std::size_t>(file.size()), reuse)) {
    return std::nullopt;
  }
  return DatedContent{std::move(reuse), file.modificationDate()};
}

std::optional<Bytes> bytesIn(const InputFile& file, Bytes reuse) {
  std::optional<DatedContent> content = contentOf(file, std::move(reuse));
  return content ? std::optional(std::move(content->bytes)) : std::nullopt;
}

// The next entry of a listing; null at its end, where `errno` is 0, and where it cannot be read.
const dirent* nextEntry(DIR* listing) {
  errno = 0;
  return ::readdir(listing);
}

// Calls `visit` for each entry of a folder but "." and "..". The answer is the number of the error
// that kept it from the end.
template <class Visitor>
int visitEntries(const std::string& folder, Visitor visit) {
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(folder.c_str()), ::closedir);
  while (const dirent* entry = listing ? nextEntry(listing.get()) : nullptr) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      visit(*entry);
    }
  }
  return errno;
}

bool isFolder(const std::string& folder, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) {
    return entry.d_type == DT_DIR;
  }
  const auto attributes = fileAttributes(joinPath(folder, entry.d_name));
  return attributes && attributes->type == FileType::Folder;
}

// `name` with its first letter in upper case.
std::string capitalised(std::string_view name) {
  std::string text(name);
  if (!text.empty() && text.front() >= 'a' && text.front() <= 'z') {
    text.front() = static_cast<char>(text.front() - 'a' + 'A');
  }
  return text;
}

// The first in byte order of the entries of `folder` that equal `name` ignoring case; empty where
// there is none.
std::string entryIgnoringCase(const std::string& folder, std::string_view name) {
  std::string found;
  for (std::string& entry : folderEntries(folder)) {
    if (equalsIgnoringCase(entry, name) && (found.empty() || entry < found)) {
      found = std::move(entry);
    }
  }
  return found;
}

}  // namespace

std::optional<FileAttributes> fileAttributes(const std::string& path) {
  return attributesOf(path);
}

std::optional<FileAttributes> fileAttributes(const std::string& path, std::error_code& error) {
  const std::optional<FileAttributes> attributes = attributesOf(path);
  error.assign(attributes ? 0 : errno, std::generic_category());
  return attributes;
}

bool mayRead(const std::string& path) {
  return ::faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) == 0;
}

std::optional<Bytes> readFile(const std::string& path, Bytes reuse) {
  return bytesIn(InputFile(path), std::move(reuse));
}

std::optional<Bytes> readBeginning(const std::string& path, std::size_t size) {
  const InputFile file(path);
  if (file.size() <= size || file.size() > maximumFileSizeInBytes) {
    return bytesIn(file, {});
  }
  Bytes bytes(size);
  return file.fill(bytes) == size ? std::optional(std::move(bytes)) : std::nullopt;
}

std::optional<FolderIdentity> folderIdentity(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 ? identityOf(status) : std::nullopt;
}

OpenFolder::OpenFolder(std::string path)
    : m_path(std::move(path)),
      m_descriptor(::open(m_path.c_str(), openForSearch | O_DIRECTORY | O_CLOEXEC)) {}

std::optional<FolderIdentity> OpenFolder::identity() const {
  struct stat status;
  return m_descriptor && ::fstat(m_descriptor.get(), &status) == 0 ? identityOf(status)
                                                                   : std::nullopt;
}

std::optional<Bytes> OpenFolder::readFile(const std::string& name) const {
  return m_descriptor ? bytesIn(InputFile(m_descriptor.get(), name), {}) : std::nullopt;
}

std::optional<DatedContent> OpenFolder::readFoundFile(const std::string& name) const {
  if (!m_descriptor) {
    return std::nullopt;
  }
  const bool isExact = attributesOf(name, m_descriptor.get()).has_value();
  const InputFile file(m_descriptor.get(), isExact ? name : capitalised(name));
  if (file || !file.isMissing()) {
    return contentOf(file, {});
  }
  const std::string entry = entryIgnoringCase(m_path, name);
  return entry.empty() ? std::nullopt : contentOf(InputFile(m_descriptor.get(), entry), {});
}

std::optional<FileAttributes> OpenFolder::fileAttributes(const std::string& name) const {
  return m_descriptor ? attributesOf(name, m_descriptor.get()) : std::nullopt;
}

bool isReadFromDisk(const std::string& path) {
  const InputFile file(path);
#ifdef POSIX_FADV_DONTNEED
  if (file) {
    ::posix_fadvise(file.descriptor(), 0, 0, POSIX_FADV_DONTNEED);
  }
#endif
  std::uint8_t byte;
  return file && (file.size() == 0 || file.read(&byte, 1) == 1);
}

std::vector<std::string> folderEntries(const std::string& folder) {
  std::vector<std::string> names;
  visitEntries(folder, [&](const dirent& entry) { names.emplace_back(entry.d_name); });
  return names;
}

std::vector<std::string> subfolders(const std::string& folder, std::error_code& error) {
  std::vector<std::string> names;
  const int errorNumber = visitEntries(folder, [&](const dirent& entry) {
    if (isFolder(folder, entry)) {
      names.emplace_back(entry.d_name);
    }
  });
  error.assign(errorNumber, std::generic_category());
  return names;
}

std::string findFile(const std::string& folder, std::string_view name) {
  std::string exact = joinPath(folder, name);
  if (name.empty() || attributesOf(exact)) {
    return exact;
  }
  std::string usual = joinPath(folder, capitalised(name));
  if (attributesOf(usual)) {
    return usual;
  }
  const std::string entry = entryIgnoringCase(folder, name);
  return entry.empty() ? exact : joinPath(folder, entry);
}

}  // namespace snaplift
