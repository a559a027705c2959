#pragma once

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "foundation/files/FileError.h"
#include "foundation/files/OutputFolder.h"

namespace snaplift {

class ImageItem;

// What an export knows of one of its folders: the names that were there when it came to it, and
// those that it has given since, with the photo that has each. Names are kept with their letter
// case folded, as some file systems do: what is kept may be taken, what is not kept is free but for
// what others write meanwhile.
class ExportFolder {
public:
  // `error`: why nothing can be written there. `knowsNames`: whether anybody will ask for them.
  ExportFolder(std::string path, std::optional<FileError> error, bool knowsNames);

  const std::string& path() const { return m_path; }
  // Names the folder.
  const std::optional<FileError>& error() const { return m_error; }
  bool had(const std::string& name) const;  // from any thread

  // One thread at a time.
  const ImageItem* photoGiven(const std::string& name) const;
  void give(const std::string& name, const ImageItem& photo);

private:
  friend class ExportFolders;

  const std::string m_path;
  const std::optional<FileError> m_error;
  std::weak_ptr<const OutputFolder> m_output;  // while it is open
  std::unordered_set<std::string> m_had;
  std::unordered_map<std::string, const ImageItem*> m_given;
};

// The destination of an export and the folders below it, made and opened when they are needed. The
// destination is open all the time; of the others, of which a device may have thousands, so many as
// a process may. A folder that is a backup, or that a link leads into one, is none to write into.
// From any thread.
class ExportFolders {
public:
  ExportFolders(std::string destination, bool knowsNames, bool makesFolders);

  const OutputFolder& destination() const { return *m_destination; }

  // The folder at `path` below the destination. It lives as long as this object.
  ExportFolder& folderAt(const std::string& path);

  // The same, held open.
  std::shared_ptr<const OutputFolder> open(ExportFolder& folder);

  // Why nothing can be written any more, because the destination's disk has gone.
  [[nodiscard]] std::optional<FileError> loss() const;

  // Brings what was written to the disk, or the disks, where links lead to others.
  [[nodiscard]] std::optional<FileError> flush();

private:
  std::string pathAt(const std::string& path) const;
  std::optional<FileError> prepare(const std::string& path);
  std::optional<FileError> prepareBelow(const std::string& path);

  const std::shared_ptr<const OutputFolder> m_destination;
  const bool m_knowsNames;
  const bool m_makesFolders;
  std::mutex m_mutex;
  std::map<std::string, std::unique_ptr<ExportFolder>> m_folders;
  std::map<std::string, std::optional<FileError>> m_prepared;  // by path; why it cannot be used
  std::vector<std::string> m_links;                            // that stand for folders
  std::deque<std::shared_ptr<const OutputFolder>> m_open;      // the last at the end
};

}  // namespace snaplift
