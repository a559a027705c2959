#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/Bytes.h"

namespace snaplift {

// A file that is offered before it exists.
struct PromisedFile {
  std::string name;                             // of the file, without a folder
  std::function<std::optional<Bytes>()> bytes;  // called on any thread, after the drop only
};

// Who promises files in a drag. All functions are called on the user interface's thread.
class PromisedFilesSource {
public:
  virtual ~PromisedFilesSource() = default;

  // The files were dropped on `folder` (an absolute path): begins to put them there and answers
  // their names without waiting for them. Called once for a drop, never before it.
  virtual std::vector<std::string> namesOfPromisedFilesDroppedAtDestination(
      const std::string& folder) = 0;

  // The same files for a receiver that does not say where it puts them. Asked for at the start of a
  // drag; reads nothing.
  virtual std::vector<PromisedFile> promisedFiles() const = 0;
};

// The folder that a direct save names: `url` is "file:///folder/name", as the target of the drop
// leaves it, up to the first NUL. Nothing where it is no such URL, names another host than
// `hostName`, or the folder does not exist or cannot be written to.
std::optional<std::string> folderOfDirectSave(std::string_view url, std::string_view hostName);

// Names for `files` in one folder: each its own where it can be a file name, numbered as
// "IMG_0001 1.JPG" where an earlier one has it already, letter case ignored.
std::vector<std::string> distinctNames(const std::vector<PromisedFile>& files);

// Promised files for receivers that take nothing but a list of existing files: they get a folder of
// their own in the process's temporary folder, which lasts as long as the process. The paths stand
// from the first question on; the files only when they have been written.
class PromisedFileList {
public:
  explicit PromisedFileList(std::vector<PromisedFile> files) : m_files(std::move(files)) {}

  // The URLs, one a line, as text/uri-list has them (RFC 2483). Of the promised files before they
  // are written, afterwards of those that there are. Empty where no folder could be made.
  std::string uriList();

  // Writes the files on workers and returns when they are written; repeated calls do nothing. The
  // event loop runs meanwhile, without the user's input. A file that cannot be read is left out.
  void write();

private:
  void choosePaths();

  std::vector<PromisedFile> m_files;
  std::vector<std::string> m_paths;
  bool m_hasPaths = false;
  bool m_isWritten = false;
};

}  // namespace snaplift
