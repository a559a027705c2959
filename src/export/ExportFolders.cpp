#include "export/ExportFolders.h"

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "backups/BackupAround.h"
#include "foundation/PortableName.h"
#include "foundation/files/File.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;

// A process may have a thousand files open, as a rule.
constexpr std::size_t mostOpenFolders = 64;

}  // namespace

ExportFolder::ExportFolder(std::string path, std::optional<FileError> error, bool knowsNames)
    : m_path(std::move(path)), m_error(std::move(error)) {
  if (knowsNames && !m_error) {
    for (const std::string& name : folderEntries(m_path)) {
      m_had.insert(foldedCase(name));
    }
  }
}

bool ExportFolder::had(const std::string& name) const {
  return m_had.contains(foldedCase(name));
}

const ImageItem* ExportFolder::photoGiven(const std::string& name) const {
  const auto given = m_given.find(foldedCase(name));
  return given != m_given.end() ? given->second : nullptr;
}

void ExportFolder::give(const std::string& name, const ImageItem& photo) {
  m_given.emplace(foldedCase(name), &photo);
}

ExportFolders::ExportFolders(std::string destination, bool knowsNames, bool makesFolders)
    : m_destination(std::make_shared<OutputFolder>(std::move(destination))),
      m_knowsNames(knowsNames),
      m_makesFolders(makesFolders) {}

std::string ExportFolders::pathAt(const std::string& path) const {
  return path.empty() ? m_destination->path() : joinPath(m_destination->path(), path);
}

ExportFolder& ExportFolders::folderAt(const std::string& path) {
  const std::lock_guard lock(m_mutex);
  std::unique_ptr<ExportFolder>& folder = m_folders[path];
  if (!folder) {
    folder = std::make_unique<ExportFolder>(pathAt(path), prepare(path), m_knowsNames);
    if (path.empty()) {
      folder->m_output = m_destination;
    }
  }
  return *folder;
}

std::shared_ptr<const OutputFolder> ExportFolders::open(ExportFolder& folder) {
  const std::lock_guard lock(m_mutex);
  std::shared_ptr<const OutputFolder> output = folder.m_output.lock();
  if (!output) {
    output = std::make_shared<OutputFolder>(folder.path());
    folder.m_output = output;
    m_open.push_back(output);
    if (m_open.size() > mostOpenFolders) {
      m_open.pop_front();
    }
  }
  return output;
}

std::optional<FileError> ExportFolders::loss() const {
  const int error = m_destination->errorOfPlace();
  return error ? std::optional(FileError::ofSystem(error, m_destination->path())) : std::nullopt;
}

std::optional<FileError> ExportFolders::flush() {
  std::optional<FileError> error = loss();
  if (!error) {
    error = flushFileSystem(m_destination->path());
  }
  for (const std::string& link : m_links) {
    if (auto another = flushFileSystem(link); another && !error) {
      error = std::move(another);
    }
  }
  return error;
}

// Level by level: each is looked at once, however many folders lie below it.
std::optional<FileError> ExportFolders::prepare(const std::string& path) {
  const auto known = m_prepared.find(path);
  if (known != m_prepared.end()) {
    return known->second;
  }
  std::optional<FileError> error;
  if (!path.empty()) {
    const std::size_t slash = path.rfind('/');
    error = prepare(slash != std::string::npos ? path.substr(0, slash) : std::string());
    if (!error) {
      error = prepareBelow(pathAt(path));
    }
  }
  if (!error && m_makesFolders) {
    if (path.empty()) {
      m_destination->removeAbandonedParts();
    } else {
      OutputFolder(pathAt(path)).removeAbandonedParts();
    }
  }
  m_prepared.emplace(path, error);
  return error;
}

std::optional<FileError> ExportFolders::prepareBelow(const std::string& path) {
  std::error_code error;
  const bool isLink = fs::is_symlink(fs::symlink_status(path, error));
  const fs::path target = isLink ? fs::canonical(path, error) : fs::path();
  if (target.empty() ? isBackupFolder(path) : !backupAround(target).empty()) {
    return FileError::insideBackup(path);
  }
  if (isLink) {
    m_links.push_back(path);
  }
  const fs::file_type type = fs::status(path, error).type();
  if (type == fs::file_type::not_found && m_makesFolders) {
    fs::create_directory(path, error);
    return error ? std::optional(FileError::ofSystem(error.value(), path)) : std::nullopt;
  }
  return type == fs::file_type::directory || type == fs::file_type::not_found
             ? std::nullopt
             : std::optional(FileError::ofSystem(error ? error.value() : ENOTDIR, path));
}

}  // namespace snaplift
