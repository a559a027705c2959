#include "export/ExportDestination.h"

#include <filesystem>
#include <system_error>

#include "backups/BackupAround.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"

namespace snaplift {
namespace {

namespace fs = std::filesystem;

std::string quoted(const std::string& path) {
  return '"' + path + '"';
}

}  // namespace

std::optional<std::string> exportDestinationProblem(const std::string& destination,
                                                    const std::vector<std::string>& backupFolders) {
  std::error_code error;
  const fs::file_status status = fs::status(destination, error);
  if (status.type() == fs::file_type::not_found) {
    return "The folder " + quoted(destination) + " does not exist.";
  }
  if (fs::exists(status) && !fs::is_directory(status)) {
    return quoted(destination) + " is not a folder.";
  }
  const fs::path resolved = fs::canonical(destination, error);
  if (!error) {
    const std::string backup = backupAround(resolved, backupFolders);
    if (!backup.empty()) {
      return quoted(destination) + " lies in the backup " + quoted(backup) +
             ", and nothing is ever written into a backup.";
    }
  }
  if (error || !isWritableFolder(destination)) {
    return "Nothing can be written into the folder " + quoted(destination) + ".";
  }
  return std::nullopt;
}

std::optional<std::string> reportFileProblem(const std::string& path,
                                             const std::vector<std::string>& backupFolders) {
  const std::string folder(parentPath(path));
  const std::string name(lastPathComponent(path));
  if (path.ends_with('/') || !isFileName(name)) {
    return quoted(path) + " is not the name of a file.";
  }
  return exportDestinationProblem(!folder.empty() ? folder : ".", backupFolders);
}

}  // namespace snaplift
