#include "foundation/FileManager.h"

#include "foundation/FileWriting.h"

namespace snaplift {
namespace {

std::optional<FileError> copyOnce(const CopySource& source, const std::string& destination) {
  const LinkResult link =
      source.url.empty() ? LinkResult::Impossible : linkFile(source.url, destination);
  switch (link) {
    case LinkResult::Linked:
      return std::nullopt;
    case LinkResult::NameTaken:
      return FileError::fileExists(destination);
    case LinkResult::Impossible:
      break;
  }
  return createFile(destination, source.contents);
}

}  // namespace

std::optional<FileError> FileManager::copyItemAtURLToURL(const CopySource& source,
                                                         const std::string& destination) {
  std::optional<FileError> error = copyOnce(source, destination);
  if (error && m_delegate != nullptr &&
      m_delegate
          ->fileManagerShouldProceedAfterErrorCopyingItemAtURLToURL(*this, *error, source,
                                                                    destination)
          .value_or(false)) {
    error.reset();
  }
  return error;
}

}  // namespace snaplift
