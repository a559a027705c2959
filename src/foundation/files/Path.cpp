#include "foundation/files/Path.h"

#include <algorithm>

namespace snaplift {
namespace {

char lowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string_view withoutTrailingSlashes(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') {
    path.remove_suffix(1);
  }
  return path;
}

// Where the extension's dot stands in a last component; npos where it has no extension.
std::size_t extensionDot(std::string_view component) {
  const std::size_t dot = component.rfind('.');
  const bool bounded = dot != std::string_view::npos && dot > 0 && dot + 1 < component.size();
  return bounded ? dot : std::string_view::npos;
}

}  // namespace

std::string joinPath(std::string_view folder, std::string_view name) {
  while (!name.empty() && name.front() == '/' && !folder.empty()) {
    name.remove_prefix(1);
  }
  if (name.empty()) {
    return std::string(folder);
  }
  std::string path;
  path.reserve(folder.size() + 1 + name.size());
  path.append(withoutTrailingSlashes(folder));
  if (!path.empty() && path.back() != '/') {
    path.push_back('/');
  }
  return path.append(name);
}

std::string_view lastPathComponent(std::string_view path) {
  path = withoutTrailingSlashes(path);
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos || path.size() == 1 ? path : path.substr(slash + 1);
}

std::string_view parentPath(std::string_view path) {
  path = withoutTrailingSlashes(path);
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? std::string_view()
                                         : withoutTrailingSlashes(path.substr(0, slash + 1));
}

std::string_view pathExtension(std::string_view path) {
  const std::string_view component = lastPathComponent(path);
  const std::size_t dot = extensionDot(component);
  return dot == std::string_view::npos ? std::string_view() : component.substr(dot + 1);
}

std::string_view pathStem(std::string_view path) {
  const std::string_view component = lastPathComponent(path);
  return component.substr(0, extensionDot(component));
}

bool isFileName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
         name.find('\0') == std::string_view::npos;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, lowerAscii, lowerAscii);
}

bool endsWithIgnoringCase(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() &&
         equalsIgnoringCase(text.substr(text.size() - suffix.size()), suffix);
}

}  // namespace snaplift
