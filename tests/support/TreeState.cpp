#include "support/TreeState.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include <sys/stat.h>

#include "foundation/Digest.h"
#include "foundation/files/File.h"

namespace snaplift {
namespace {

std::string digestOf(std::string_view bytes) {
  return hexText(sha1({bytesOf(bytes)}), HexCase::Lower);
}

EntryState stateOf(const std::string& path) {
  struct stat status;
  if (::lstat(path.c_str(), &status) != 0) {
    throw std::runtime_error("cannot examine " + path);
  }
  const timespec& time = status.st_mtim;
  std::ostringstream state;
  state << std::oct << "mode " << status.st_mode << std::dec << ", modified at " << time.tv_sec
        << " s " << time.tv_nsec << " ns";
  if (S_ISLNK(status.st_mode)) {
    state << ", " << digestOf(std::filesystem::read_symlink(path).native());
  } else if (S_ISREG(status.st_mode)) {
    const std::optional<Bytes> content = readFile(path);
    if (!content) {
      throw std::runtime_error("cannot read " + path);
    }
    state << ", " << content->size() << " bytes, " << digestOf(textOf(*content));
  }
  return state.str();
}

}  // namespace

std::map<std::string, EntryState> treeState(const std::string& folder) {
  std::map<std::string, EntryState> states{{".", stateOf(folder)}};
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    states.emplace(entry.path().lexically_relative(folder), stateOf(entry.path()));
  }
  return states;
}

}  // namespace snaplift
