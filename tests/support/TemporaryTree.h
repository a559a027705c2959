#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace snaplift {

// A test's own folder below the system's temporary folder, under a name that nobody else has.
// Removed with all that is in it when the object dies, folders without permissions included.
// Failure to make or write it throws std::runtime_error, which fails the test.
class TemporaryTree {
public:
  TemporaryTree();
  ~TemporaryTree();
  TemporaryTree(const TemporaryTree&) = delete;
  TemporaryTree& operator=(const TemporaryTree&) = delete;

  // The folder itself, without a "/" at the end.
  const std::string& root() const { return m_root; }

  // The full path of `name`, which may have components, inside the folder. Nothing is made.
  std::string path(std::string_view name) const;

  // Writes a file anew, with the folders above it, and returns its full path.
  std::string write(std::string_view name, std::string_view content) const;

  // Makes a folder, with those above it, and returns its full path.
  std::string makeFolder(std::string_view name) const;

  // The content of a file, or a text that says that it cannot be read, so that a comparison fails.
  std::string read(std::string_view name) const;

  // The paths of all entries below `folder` at any depth, relative to it, in byte order. Links are
  // listed and not followed.
  std::vector<std::string> list(std::string_view folder = {}) const;

private:
  std::string m_root;
};

}  // namespace snaplift
