#include "formats/DatabaseSource.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/File.h"
#include "foundation/files/FileDescriptor.h"
#include "foundation/files/Path.h"
#include "foundation/files/RandomName.h"
#include "foundation/files/TemporaryFolder.h"

namespace snaplift {
namespace {

constexpr std::uint64_t maximumCopiedSizeInBytes = std::uint64_t{1} << 31;
constexpr std::array<std::string_view, 2> logSuffixes = {"-wal", "-journal"};
constexpr std::string_view copyName = "Manifest.db";

// An empty log holds nothing. Whatever else bears a log's name might.
bool hasLog(const std::string& path) {
  return std::ranges::any_of(logSuffixes, [&](std::string_view suffix) {
    const auto log = fileAttributes(path + std::string(suffix));
    return log && (log->type != FileType::Regular || log->size > 0);
  });
}

bool writeAll(int descriptor, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = ::write(descriptor, bytes, count);
    if (written < 0 && errno != EINTR) {
      return false;
    }
    const auto done = static_cast<std::size_t>(written < 0 ? 0 : written);
    bytes += done;
    count -= done;
  }
  return true;
}

bool copyOpenFile(int source, int destination, const std::stop_token& stop) {
  std::vector<char> buffer(std::size_t{1} << 20);
  for (std::uint64_t copied = 0; copied <= maximumCopiedSizeInBytes && !stop.stop_requested();) {
    const ssize_t count = ::read(source, buffer.data(), buffer.size());
    if (count == 0) {
      return true;
    }
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0 || !writeAll(destination, buffer.data(), static_cast<std::size_t>(count))) {
      return false;
    }
    copied += static_cast<std::uint64_t>(count);
  }
  return false;
}

bool copyRegularFile(const std::string& source, const std::string& destination,
                     const std::stop_token& stop) {
  const FileDescriptor from(
      ::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY));
  struct stat status;
  if (!from || ::fstat(from.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return false;
  }
  FileDescriptor to(::open(destination.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  return to && copyOpenFile(from.get(), to.get(), stop) && to.close();
}

// "file:/a/b%20c": everything but the plainest bytes of a path is escaped.
std::string uriOf(const std::string& path, std::string_view parameters) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string uri = "file:";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
                         (c >= 'a' && c <= 'z') || c == '/' || c == '.' || c == '-' || c == '_';
    if (isPlain) {
      uri += c;
    } else {
      uri += {'%', digits[byte >> 4], digits[byte & 15]};
    }
  }
  return uri.append(parameters);
}

}  // namespace

DatabaseSource::DatabaseSource(const std::string& path, std::stop_token stop) {
  const auto database = fileAttributes(path);
  if (!database || database->type != FileType::Regular || !mayRead(path)) {
    return;
  }
  if (!hasLog(path)) {
    m_uri = uriOf(path, "?mode=ro&immutable=1");
  } else if (makeCopy(path, std::move(stop))) {
    m_uri = uriOf(joinPath(m_folder, copyName), "?mode=rw");
  }
}

bool DatabaseSource::makeCopy(const std::string& path, std::stop_token stop) {
  const std::string folder = joinPath(temporaryFolder(), randomName("database-"));
  if (temporaryFolder().empty() || ::mkdir(folder.c_str(), 0700) != 0) {
    return false;
  }
  m_folder = folder;
  const std::string copy = joinPath(m_folder, copyName);
  bool isWhole = copyRegularFile(path, copy, stop);
  for (const std::string_view suffix : logSuffixes) {
    const std::string log = path + std::string(suffix);
    isWhole =
        isWhole && (!fileAttributes(log) || copyRegularFile(log, copy + std::string(suffix), stop));
  }
  return isWhole;
}

DatabaseSource::~DatabaseSource() {
  std::error_code ignored;
  if (isCopy()) {
    std::filesystem::remove_all(m_folder, ignored);
  }
}

}  // namespace snaplift
