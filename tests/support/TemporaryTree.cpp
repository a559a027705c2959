#include "support/TemporaryTree.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <stdlib.h>

#include "foundation/files/Path.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;

void makeRemovable(const fs::path& folder) {
  std::error_code ignored;
  fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, ignored);
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, ignored)) {
    if (entry.symlink_status(ignored).type() == fs::file_type::directory) {
      makeRemovable(entry.path());
    }
  }
}

}  // namespace

TemporaryTree::TemporaryTree() {
  std::string name = (fs::temp_directory_path() / "snaplift-test-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("cannot make " + name);
  }
  m_root = name;
}

TemporaryTree::~TemporaryTree() {
  std::error_code ignored;
  makeRemovable(m_root);
  fs::remove_all(m_root, ignored);
}

std::string TemporaryTree::path(std::string_view name) const {
  return joinPath(m_root, name);
}

std::string TemporaryTree::write(std::string_view name, std::string_view content) const {
  std::string file = path(name);
  fs::create_directories(parentPath(file));
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream << content;
  stream.close();
  if (!stream) {
    throw std::runtime_error("cannot write " + file);
  }
  return file;
}

std::string TemporaryTree::makeFolder(std::string_view name) const {
  std::string folder = path(name);
  fs::create_directories(folder);
  return folder;
}

std::string TemporaryTree::read(std::string_view name) const {
  std::ifstream stream(path(name), std::ios::binary);
  if (!stream) {
    return "(" + path(name) + " cannot be read)";
  }
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> TemporaryTree::list(std::string_view folder) const {
  const fs::path top = path(folder);
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(top)) {
    names.push_back(entry.path().lexically_relative(top).string());
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace snaplift
