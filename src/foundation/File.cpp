#include "foundation/File.h"

#include <cerrno>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FileDescriptor.h"
#include "foundation/Path.h"

namespace snaplift {
namespace {

// No file of a backup that is read whole comes near this: a photo has some megabytes, the manifest
// of a million files 200.
constexpr std::uint64_t maximumFileSizeInBytes = std::uint64_t{1} << 31;

// A sparse file may claim any size without holding a byte. Above the harmless size, at least one
// byte in sixteen has to exist; a copying tool that turns runs of zeros into holes leaves far more
// of a manifest or a photo.
constexpr std::uint64_t harmlessSizeInBytes = std::uint64_t{1} << 20;
constexpr std::uint64_t maximumSparseness = 16;

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

bool entryExists(const std::string& path) {
  struct stat status;
  return ::lstat(path.c_str(), &status) == 0;
}

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

// Reads up to `size` bytes and says how many there were: fewer only at the end of the file or after
// an error.
std::size_t readFully(int descriptor, std::uint8_t* out, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count = ::read(descriptor, out + done, size - done);
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      break;
    }
    done += static_cast<std::size_t>(count);
  }
  return done;
}

}  // namespace

std::optional<FileAttributes> fileAttributes(const std::string& path) {
  struct stat status;
  if (::lstat(path.c_str(), &status) != 0) {
    return std::nullopt;
  }
  return FileAttributes{typeOf(status.st_mode), static_cast<std::uint64_t>(status.st_size),
                        modificationDateOf(status)};
}

std::optional<Bytes> readFile(const std::string& path, Bytes reuse) {
  // O_NONBLOCK: a FIFO without a writer answers at once and is then seen to be no regular file.
  const FileDescriptor file(
      ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY));
  struct stat status;
  if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (size > maximumFileSizeInBytes || holdsTooLittle(file.get(), status)) {
    return std::nullopt;
  }
  reuse.resize(static_cast<std::size_t>(size));
  std::uint8_t oneMore;
  if (readFully(file.get(), reuse.data(), reuse.size()) != size ||
      readFully(file.get(), &oneMore, 1) != 0) {
    return std::nullopt;
  }
  return reuse;
}

bool isReadableFolder(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
         ::access(path.c_str(), R_OK | X_OK) == 0;
}

std::vector<std::string> folderEntries(const std::string& folder) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(folder.c_str()), ::closedir);
  if (!listing) {
    return names;
  }
  while (const dirent* entry = ::readdir(listing.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      names.emplace_back(name);
    }
  }
  return names;
}

std::string findFile(const std::string& folder, std::string_view name) {
  const std::string exact = joinPath(folder, name);
  if (name.empty() || entryExists(exact)) {
    return exact;
  }
  std::string capitalised = exact;
  char& first = capitalised[capitalised.size() - name.size()];
  first = first >= 'a' && first <= 'z' ? static_cast<char>(first - 'a' + 'A') : first;
  if (entryExists(capitalised)) {
    return capitalised;
  }
  std::string found;
  for (std::string& entry : folderEntries(folder)) {
    if (equalsIgnoringCase(entry, name) && (found.empty() || entry < found)) {
      found = std::move(entry);
    }
  }
  return found.empty() ? exact : joinPath(folder, found);
}

}  // namespace snaplift
