#pragma once

#include <optional>
#include <string>

#include "foundation/Bytes.h"
#include "foundation/FileError.h"

namespace snaplift {

class FileManager;

// What a copy is made from: the file at `url`, whose bytes its writer still has in hand. They are
// copied where the file cannot be linked, or is not there at all (an empty url), so that a full
// temporary folder costs nobody a photo. Both stay valid during the copy.
struct CopySource {
  std::string url;
  ByteView contents;
};

// What a FileManager asks its owner during an operation, on the thread of the operation. The
// questions are optional: the answer of the base, absent, means that nobody asks.
class FileManagerDelegate {
public:
  virtual ~FileManagerDelegate() = default;

  // Whether the copy from `source` to `destination`, which met `error`, counts as done. A delegate
  // may have tried otherwise in the meantime, with the same file manager; where that failed in its
  // turn it may put the reason in the place of `error`, which is what the copy then reports. An
  // absent answer is no.
  virtual std::optional<bool> fileManagerShouldProceedAfterErrorCopyingItemAtURLToURL(
      FileManager&, FileError& /*error*/, const CopySource& /*source*/,
      const std::string& /*destination*/) {
    return std::nullopt;
  }

  // Whether an item may be moved. An absent answer is yes. The file manager copies and moves
  // nothing so far.
  virtual std::optional<bool> fileManagerShouldMoveItemAtURLToURL(
      FileManager&, const std::string& /*source*/, const std::string& /*destination*/) {
    return std::nullopt;
  }
};

// Copies files and asks a delegate when something is in the way. It exists so that the rule for a
// name that is taken belongs to the one who exports, and the rule that nothing is ever replaced,
// and no part of a file ever stands under its name, to nobody but this class.
//
// One for each owner, so that the questions of a copy come back to the object that made it. URLs
// are paths. Different file managers may work at the same time, on the same folder, too.
class FileManager {
public:
  FileManagerDelegate* delegate() const { return m_delegate; }
  void setDelegate(FileManagerDelegate* delegate) { m_delegate = delegate; }  // not owned

  // Puts the file under the name `destination`: by a link where both stand on one file system, else
  // by its bytes; whole or not at all. Absent after success, also when the delegate counted a
  // failure as success.
  [[nodiscard]] std::optional<FileError> copyItemAtURLToURL(const CopySource& source,
                                                            const std::string& destination);

private:
  FileManagerDelegate* m_delegate = nullptr;
};

}  // namespace snaplift
