#include "foundation/files/FileError.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include "foundation/Sentence.h"

namespace snaplift {

FileError FileError::ofSystem(int errorNumber, std::string path) {
  return errorNumber == EEXIST ? fileExists(std::move(path))
                               : FileError{posixErrorDomain, errorNumber, std::move(path)};
}

FileError FileError::fileExists(std::string path) {
  return {cocoaErrorDomain, fileWriteFileExistsError, std::move(path)};
}

FileError FileError::unreadable(std::string path) {
  return {cocoaErrorDomain, fileReadUnknownError, std::move(path)};
}

FileError FileError::missing(std::string path) {
  return {cocoaErrorDomain, fileReadNoSuchFileError, std::move(path)};
}

FileError FileError::forbidden(std::string path) {
  return {cocoaErrorDomain, fileReadNoPermissionError, std::move(path)};
}

FileError FileError::encrypted(std::string path) {
  return {backupErrorDomain, encryptedError, std::move(path)};
}

FileError FileError::insideBackup(std::string path) {
  return {backupErrorDomain, insideBackupError, std::move(path)};
}

FileError FileError::invalidFileName(std::string path) {
  return {cocoaErrorDomain, fileWriteInvalidFileNameError, std::move(path)};
}

bool FileError::isFileExists() const {
  return domain == cocoaErrorDomain && code == fileWriteFileExistsError;
}

std::string FileError::reason() const {
  if (domain == posixErrorDomain) {
    return std::generic_category().message(code);
  }
  if (domain == backupErrorDomain) {
    return code == encryptedError ? translatable("Core", "the backup is encrypted")
                                  : translatable("Core", "nothing is ever written into a backup");
  }
  switch (code) {
    case fileWriteFileExistsError:
      return translatable("Core", "a file of this name exists");
    case fileWriteInvalidFileNameError:
      return translatable("Core", "this is not the name of a file");
    case fileReadNoSuchFileError:
      return translatable("Core", "the file is missing");
    case fileReadNoPermissionError:
      return translatable("Core", "there is no permission to read the file");
    default:
      return translatable("Core", "the file cannot be read");
  }
}

std::string FileError::description() const {
  return path + ": " + reason() + " (" + std::string(domain) + " " + std::to_string(code) + ")";
}

}  // namespace snaplift
