#include "export/ExportLayout.h"

#include <algorithm>
#include <utility>

#include "foundation/PortableName.h"
#include "foundation/Time.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

constexpr const char* undated = "undated";
constexpr std::string_view mediaFolder = "Media/";

// Handsets have five levels; what lies deeper in a manifest goes into the last of these, so that no
// path gets too long for a file system.
constexpr int deepestFolder = 12;

}  // namespace

std::string LayoutFolders::folderFor(const ImageItem& photo, const std::string& handset) {
  switch (m_layout) {
    case ExportLayout::Flat:
      return {};
    case ExportLayout::Device:
      return folderIn({}, handset, handset);
    case ExportLayout::Month: {
      const std::optional<Instant> date = photo.info().date();
      return date ? localMonthText(*date).value_or(undated) : undated;
    }
    case ExportLayout::Dcim:
      return folderOfDevicePath(photo.info().devicePath);
  }
  return {};
}

std::string LayoutFolders::folderOfDevicePath(std::string_view devicePath) {
  if (devicePath.starts_with(mediaFolder)) {
    devicePath.remove_prefix(mediaFolder.size());
  }
  std::string_view folder = parentPath(devicePath);
  std::string path;
  std::string source;
  for (int depth = 0; depth < deepestFolder && !folder.empty();) {
    const std::string_view name = folder.substr(0, folder.find('/'));
    folder.remove_prefix(std::min(name.size() + 1, folder.size()));
    if (!name.empty()) {
      source += '/';
      source += name;
      path = folderIn(path, source, name);
      ++depth;
    }
  }
  return path;
}

// The folder in `parent` for `source`, which is called `name`.
const std::string& LayoutFolders::folderIn(const std::string& parent, const std::string& source,
                                           std::string_view name) {
  const auto known = m_folders.find(source);
  if (known != m_folders.end()) {
    return known->second;
  }
  const std::string wanted = joinPath(parent, portableName(name));
  std::uint64_t& number = m_numbers[foldedCase(wanted)];
  std::string path = wanted;
  while (number++ > 0) {
    path = wanted + " " + std::to_string(number);
    if (m_numbers.emplace(foldedCase(path), 1).second) {
      break;
    }
  }
  return m_folders.emplace(source, std::move(path)).first->second;
}

}  // namespace snaplift
