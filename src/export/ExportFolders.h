#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_set>

#include "foundation/files/OutputFolder.h"

namespace snaplift {

// A folder of an export and the names in it: those that were there when the export came to it, and
// those that it has given since. Names are kept with their letter case folded, as some file systems
// do: what is kept may be taken, what is not kept is free but for what others write meanwhile.
class ExportFolder {
public:
  // `knowsNames`: whether anybody will ask for them.
  ExportFolder(std::string path, bool knowsNames);

  const OutputFolder& output() const { return m_output; }
  bool had(const std::string& name) const;  // from any thread

  // One thread at a time.
  bool hasGiven(const std::string& name) const;
  void give(const std::string& name);

private:
  OutputFolder m_output;
  std::unordered_set<std::string> m_had;
  std::unordered_set<std::string> m_given;
};

// The destination of an export and the folders below it, opened and made when they are needed. From
// any thread.
class ExportFolders {
public:
  ExportFolders(std::string destination, bool knowsNames, bool makesFolders);

  const std::string& destination() const { return m_destination; }

  // The folder at `path` below the destination. It lives as long as this object.
  ExportFolder& folderAt(const std::string& path);

private:
  const std::string m_destination;
  const bool m_knowsNames;
  const bool m_makesFolders;
  std::mutex m_mutex;
  std::map<std::string, std::unique_ptr<ExportFolder>> m_folders;
};

}  // namespace snaplift
