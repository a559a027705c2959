#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "backups/ImageItem.h"

namespace snaplift {

// How an export's photos are spread over folders below its destination.
enum class ExportLayout {
  Flat,    // no folders
  Device,  // one for each handset, called as it is: "Anna's Phone"
  Month,   // one for each month of the photos' dates in local time, "2011-10"; or "undated"
  Dcim,    // those of the device itself, without its "Media": "DCIM/100APPLE"
};

// The folders of one export. Names of devices and folders are a stranger's words: each becomes a
// name that every file system takes (portableName) and that leads nowhere but below the
// destination. Devices or folders that are different and would be one folder then, also one where
// letter case is folded, are told apart by a number: "Anna", "ANNA 2". The same photos asked for in
// the same order get the same folders. For one thread.
class LayoutFolders {
public:
  explicit LayoutFolders(ExportLayout layout) : m_layout(layout) {}

  // The folder of `photo`, which is of the handset called `handset` (DeviceModel::titleOfHandset),
  // as a path below the destination: what goes into PhotoToExport::folder. Nothing is made.
  std::string folderFor(const ImageItem& photo, const std::string& handset);

private:
  std::string folderOfDevicePath(std::string_view devicePath);
  const std::string& folderIn(const std::string& parent, const std::string& source,
                              std::string_view name);

  const ExportLayout m_layout;
  std::map<std::string, std::string> m_folders;  // by what they stand for
  // The last number that a folder's path, its letter case folded, was given.
  std::unordered_map<std::string, std::uint64_t> m_numbers;
};

}  // namespace snaplift
