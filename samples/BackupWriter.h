#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/Time.h"
#include "samples/ManifestWriter.h"
#include "samples/PropertyListWriter.h"

namespace snaplift::samples {

// A layout of a backup folder. Generation 2 has two: one property list a file that holds path and
// content ("mdbackup"), or a property list and a content file ("mdinfo" and "mddata").
enum class Generation { TwoSingleForm, TwoPairForm, Three, Four, Five, Ten };

// The domain in which a backup of that generation keeps its photos. Their paths begin with
// "Media/DCIM/" in all of them.
std::string_view photoDomain(Generation generation);

// One backed-up file, folder or link. Folders, links and files without content have no content
// file; generations 2 and 3 do not list folders and links at all.
struct SampleFile {
  std::string domain = {}, path = {}, content = {};
  std::uint32_t modificationDate = 0;           // seconds since 1970
  std::optional<std::uint32_t> birthDate = {};  // generation 4 and later; else the same
  std::uint16_t mode = regularFileMode;
  std::optional<std::string> linkTarget = {};
  std::vector<std::pair<std::string, std::string>> properties = {};  // generations 4 and 5 only
  bool contentMissing = false;  // listed as if it had its content, which is not written
};

// A whole backup. Without a name or a version the info file lacks that key.
struct SampleBackup {
  Generation generation = Generation::Five;
  std::optional<std::string> deviceName = {}, productVersion = {};
  bool encrypted = false;  // the flag of the manifest; contents are written as they are
  Instant date = {};       // the modification time of the info file
  std::vector<SampleFile> files = {};
  bool lowerCaseNames = false;  // "info.plist" where backups have "Info.plist"
  PropertyListEncoding encoding = PropertyListEncoding::Xml;  // of every property list
  std::optional<std::string> deviceIdentifier = {};
  std::size_t filesInLog = 0;  // generation 10: so many at the end stand in a write-ahead log only
  bool unfinished = false;     // generation 10: the device was interrupted, says "Status.plist"
};

// Writes the backup into `folder`, which is made where it does not exist. In generation 2 each
// content file, mdbackup or mddata, gets its file's modification date, which that generation
// records nowhere else. Development tool: throws std::runtime_error when something cannot be
// written.
void writeBackup(const std::string& folder, const SampleBackup& backup);

// The entries of the manifest database that writeBackup() gives to generations 4 and 5, in order.
std::vector<ManifestEntry> manifestEntries(const std::vector<SampleFile>& files);

// Writes a file anew, making the folders above it. Throws std::runtime_error.
void writeFile(const std::string& path, std::string_view content);

// Sets the modification time of a file or folder. Throws std::runtime_error.
void setModificationDate(const std::string& path, Instant date);

}  // namespace snaplift::samples
