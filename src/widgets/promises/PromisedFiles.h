#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace snaplift {

// Promised files for receivers that take nothing but a list of existing files. Who promises them
// decides where they stand, and how they are written. User interface's thread.
class PromisedFileList {
public:
  virtual ~PromisedFileList() = default;

  // The absolute paths, in the order of the files: before they are written those that are meant for
  // them, afterwards those of the files that there are. Reads nothing and writes no file.
  virtual const std::vector<std::string>& paths() = 0;

  // Writes the files and returns when they are written; repeated calls write nothing more. The
  // event loop runs meanwhile, without the user's input, so that others may ask, and whoever asked
  // may be gone afterwards: he keeps the list by its pointer. A file that cannot be written is left
  // out.
  virtual void write() = 0;
};

// Who promises files in a drag. All functions are called on the user interface's thread.
class PromisedFilesSource {
public:
  virtual ~PromisedFilesSource() = default;

  // The files were dropped on `folder` (an absolute path): begins to put them there and answers
  // their names without waiting for them. Called once for a drop, never before it.
  virtual std::vector<std::string> namesOfPromisedFilesDroppedAtDestination(
      const std::string& folder) = 0;

  // What the first of the files is to be called.
  virtual std::string firstPromisedName() const = 0;

  // The same files for a receiver that does not say where it puts them. Asked for at the start of a
  // drag; reads nothing. Null where there is no such way.
  virtual std::shared_ptr<PromisedFileList> promisedFiles() = 0;
};

// The folder that a direct save names: `url` is "file:///folder/name", as the target of the drop
// leaves it, up to the first NUL. Nothing where it is no such URL, names another host than
// `hostName`, or the folder does not exist or cannot be written to.
std::optional<std::string> folderOfDirectSave(std::string_view url, std::string_view hostName);

}  // namespace snaplift
