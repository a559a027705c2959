#include "export/ExportDestination.h"

#include <filesystem>
#include <system_error>

#include "backups/BackupAround.h"
#include "foundation/files/OutputFolder.h"
#include "foundation/files/Path.h"

namespace snaplift {

namespace fs = std::filesystem;

std::optional<Sentence> exportDestinationProblem(const std::string& destination,
                                                 const std::vector<std::string>& backupFolders) {
  std::error_code error;
  const fs::file_status status = fs::status(destination, error);
  if (status.type() == fs::file_type::not_found) {
    return Sentence{translatable("Core", "The folder \"%1\" does not exist."), {destination}};
  }
  if (fs::exists(status) && !fs::is_directory(status)) {
    return Sentence{translatable("Core", "\"%1\" is not a folder."), {destination}};
  }
  const fs::path resolved = fs::canonical(destination, error);
  if (!error) {
    const std::string backup = backupAround(resolved, backupFolders);
    if (!backup.empty()) {
      return Sentence{translatable("Core",
                                   "\"%1\" lies in the backup \"%2\", and nothing is ever written "
                                   "into a backup."),
                      {destination, backup}};
    }
  }
  if (error || !isWritableFolder(destination)) {
    return Sentence{translatable("Core", "Nothing can be written into the folder \"%1\"."),
                    {destination}};
  }
  return std::nullopt;
}

std::optional<Sentence> reportFileProblem(const std::string& path,
                                          const std::vector<std::string>& backupFolders) {
  const std::string folder(parentPath(path));
  const std::string name(lastPathComponent(path));
  if (path.ends_with('/') || !isFileName(name)) {
    return Sentence{translatable("Core", "\"%1\" is not the name of a file."), {path}};
  }
  return exportDestinationProblem(!folder.empty() ? folder : ".", backupFolders);
}

}  // namespace snaplift
