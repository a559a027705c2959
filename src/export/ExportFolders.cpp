#include "export/ExportFolders.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "foundation/files/File.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

std::string folded(std::string name) {
  std::ranges::transform(name, name.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return name;
}

}  // namespace

ExportFolder::ExportFolder(std::string path, bool knowsNames) : m_output(std::move(path)) {
  m_output.removeAbandonedParts();
  if (knowsNames) {
    for (std::string& name : folderEntries(m_output.path())) {
      m_had.insert(folded(std::move(name)));
    }
  }
}

bool ExportFolder::had(const std::string& name) const {
  return m_had.contains(folded(name));
}

bool ExportFolder::hasGiven(const std::string& name) const {
  return m_given.contains(folded(name));
}

void ExportFolder::give(const std::string& name) {
  m_given.insert(folded(name));
}

ExportFolders::ExportFolders(std::string destination, bool knowsNames, bool makesFolders)
    : m_destination(std::move(destination)),
      m_knowsNames(knowsNames),
      m_makesFolders(makesFolders) {}

ExportFolder& ExportFolders::folderAt(const std::string& path) {
  const std::lock_guard lock(m_mutex);
  std::unique_ptr<ExportFolder>& folder = m_folders[path];
  if (!folder) {
    const std::string whole = path.empty() ? m_destination : joinPath(m_destination, path);
    if (m_makesFolders && !path.empty()) {
      std::error_code ignored;  // that the folder is not there is said by each of its photos
      std::filesystem::create_directories(whole, ignored);
    }
    folder = std::make_unique<ExportFolder>(whole, m_knowsNames);
  }
  return *folder;
}

}  // namespace snaplift
