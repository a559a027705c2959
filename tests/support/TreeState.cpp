#include "support/TreeState.h"

#include <filesystem>
#include <ostream>
#include <stdexcept>

#include <sys/stat.h>

#include "foundation/Digest.h"
#include "foundation/File.h"

namespace snaplift {
namespace {

std::string digestOf(std::string_view bytes) {
  return hexText(sha1({bytesOf(bytes)}), HexCase::Lower);
}

std::string digestOfContent(const std::string& path, mode_t mode) {
  if (S_ISLNK(mode)) {
    return digestOf(std::filesystem::read_symlink(path).native());
  }
  if (!S_ISREG(mode)) {
    return {};
  }
  const std::optional<Bytes> content = readFile(path);
  if (!content) {
    throw std::runtime_error("cannot read " + path);
  }
  return digestOf(textOf(*content));
}

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

EntryState stateOf(const std::string& path) {
  struct stat status;
  if (::lstat(path.c_str(), &status) != 0) {
    throw std::runtime_error("cannot examine " + path);
  }
#ifdef __APPLE__
  const std::int64_t modifiedAt = nanoseconds(status.st_mtimespec);
#else
  const std::int64_t modifiedAt = nanoseconds(status.st_mtim);
#endif
  return {status.st_mode, S_ISDIR(status.st_mode) ? 0 : static_cast<std::uint64_t>(status.st_size),
          modifiedAt, digestOfContent(path, status.st_mode)};
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const EntryState& state) {
  return out << std::oct << "mode " << state.mode << std::dec << ", " << state.size
             << " bytes, modified at " << state.modifiedAt << " ns, " << state.contentDigest;
}

std::map<std::string, EntryState> treeState(const std::string& folder) {
  const std::filesystem::path top = folder;
  std::map<std::string, EntryState> states{{".", stateOf(folder)}};
  for (const auto& entry : std::filesystem::recursive_directory_iterator(top)) {
    const std::string path = entry.path().string();
    states.emplace(entry.path().lexically_relative(top).string(), stateOf(path));
  }
  return states;
}

}  // namespace snaplift
