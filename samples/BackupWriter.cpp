#include "samples/BackupWriter.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "foundation/Digest.h"
#include "foundation/files/Path.h"
#include "samples/DatabaseWriter.h"

namespace snaplift::samples {
namespace {

bool isRegular(const SampleFile& file) {
  return (file.mode & 0xF000) == 0x8000;
}

bool hasContentFile(const SampleFile& file) {
  return isRegular(file) && !file.content.empty() && !file.contentMissing;
}

// The writer of one backup: what its property lists and content files have in common.
class Folder {
public:
  Folder(const std::string& folder, const SampleBackup& backup)
      : m_folder(folder), m_backup(backup) {}

  void writeInfo() const {
    PlistValue::Dictionary info;
    if (m_backup.deviceName) {
      info.emplace_back("Device Name", *m_backup.deviceName);
      info.emplace_back("Display Name", *m_backup.deviceName);
    }
    info.emplace_back("Last Backup Date", m_backup.date);
    if (m_backup.productVersion) {
      info.emplace_back("Product Version", *m_backup.productVersion);
    }
    if (m_backup.deviceIdentifier) {
      info.emplace_back("Unique Identifier", *m_backup.deviceIdentifier);
    }
    const std::string path = pathOf(m_backup.lowerCaseNames ? "info.plist" : "Info.plist");
    writeFile(path, encoded(std::move(info)));
    setModificationDate(path, m_backup.date);
  }

  void writeManifest(PlistValue::Dictionary manifest) const {
    manifest.emplace_back("IsEncrypted", m_backup.encrypted);
    manifest.emplace_back("Version", "2.0");
    writeFile(pathOf(m_backup.lowerCaseNames ? "manifest.plist" : "Manifest.plist"),
              encoded(std::move(manifest)));
  }

  // The manifest of generations 2 and 3, whose list of files is a property list inside a property
  // list.
  void writeManifestWithFiles() const {
    PlistValue::Dictionary files;
    for (const SampleFile& file : m_backup.files) {
      if (isRegular(file)) {
        files.emplace_back(contentName(file.domain, file.path),
                           PlistValue::dictionary({
                               {"Domain", file.domain},
                               {"ModificationTime", instantFromUnixTime(file.modificationDate)},
                               {"DataHash", PlistValue::data(digestOf(file.content))},
                           }));
      }
    }
    writeManifest({{"Data", nested(PlistValue::dictionary({{"Files", std::move(files)}}))}});
  }

  void writeSingleForm(const SampleFile& file) const {
    const PlistValue whole = PlistValue::dictionary(
        {{"Domain", file.domain}, {"Path", file.path}, {"Data", PlistValue::data(file.content)}});
    if (!file.contentMissing) {
      const std::string path = pathOf(contentName(file.domain, file.path) + ".mdbackup");
      writeFile(path, encoded(whole));
      setModificationDate(path, instantFromUnixTime(file.modificationDate));
    }
  }

  void writePairForm(const SampleFile& file, const PlistValue& info) const {
    const std::string base = pathOf(contentName(file.domain, file.path));
    writeFile(base + ".mdinfo", encoded(info));
    if (!file.contentMissing) {
      writeFile(base + ".mddata", file.content);
      if (m_backup.generation == Generation::TwoPairForm) {
        setModificationDate(base + ".mddata", instantFromUnixTime(file.modificationDate));
      }
    }
  }

  void writePairs() const {
    for (const SampleFile& file : m_backup.files) {
      if (isRegular(file)) {
        const PlistValue path =
            PlistValue::dictionary({{"Domain", file.domain}, {"Path", file.path}});
        const bool bare = m_backup.generation == Generation::TwoPairForm;
        writePairForm(file, bare ? path : PlistValue::dictionary({{"Metadata", nested(path)}}));
      }
    }
  }

  void writeSingles() const {
    for (const SampleFile& file : m_backup.files) {
      if (isRegular(file)) {
        writeSingleForm(file);
      }
    }
  }

  void writeDatabase() const {
    const std::vector<ManifestEntry> entries = manifestEntries(m_backup.files);
    writeFile(pathOf("Manifest.mbdb"), manifestDatabase(entries));
    if (m_backup.generation == Generation::Four) {
      writeFile(pathOf("Manifest.mbdx"), manifestIndexFile(entries));
    }
    for (const SampleFile& file : m_backup.files) {
      if (hasContentFile(file)) {
        writeFile(pathOf(contentName(file.domain, file.path)), file.content);
      }
    }
  }

  void writeStatus() const {
    writeFile(pathOf("Status.plist"),
              encoded(PlistValue::Dictionary{
                  {"SnapshotState", m_backup.unfinished ? "uploading" : "finished"},
                  {"IsFullBackup", true}}));
  }

  // Folders are named by the first two digits of what they hold.
  void writeTable() const {
    std::vector<DatabaseEntry> rows;
    for (const SampleFile& file : m_backup.files) {
      const std::uint64_t size = isRegular(file) ? file.content.size() : 0;
      const std::int64_t birth = file.birthDate.value_or(file.modificationDate);
      rows.push_back(
          {.domain = file.domain,
           .path = file.path,
           .flags = isRegular(file)           ? 1
                    : file.mode == folderMode ? 2
                                              : 4,
           .record = archivedRecord(file.path, size, birth, file.modificationDate, file.mode)});
      if (hasContentFile(file)) {
        const std::string name = contentName(file.domain, file.path);
        writeFile(pathOf(name.substr(0, 2) + "/" + name), file.content);
      }
    }
    writeManifestDatabase(pathOf("Manifest.db"), rows, m_backup.filesInLog);
  }

private:
  std::string pathOf(std::string_view name) const { return joinPath(m_folder, name); }
  std::string encoded(const PlistValue& value) const {
    return propertyList(value, m_backup.encoding);
  }
  PlistValue nested(const PlistValue& value) const { return PlistValue::data(encoded(value)); }

  static std::string digestOf(std::string_view content) {
    return std::string(textOf(sha1({bytesOf(content)})));
  }

  const std::string& m_folder;
  const SampleBackup& m_backup;
};

}  // namespace

std::string_view photoDomain(Generation generation) {
  switch (generation) {
    case Generation::TwoSingleForm:
    case Generation::TwoPairForm:
      return "HomeDomain";
    case Generation::Three:
    case Generation::Four:
      return "MediaDomain";
    case Generation::Five:
    case Generation::Ten:
      return "CameraRollDomain";
  }
  throw std::logic_error("no such generation");
}

std::vector<ManifestEntry> manifestEntries(const std::vector<SampleFile>& files) {
  std::vector<ManifestEntry> entries;
  entries.reserve(files.size());
  for (const SampleFile& file : files) {
    ManifestEntry& entry = entries.emplace_back();
    entry.domain = file.domain;
    entry.path = file.path;
    entry.linkTarget = file.linkTarget;
    entry.mode = file.mode;
    entry.creationDate = entry.modificationDate = file.modificationDate;
    entry.addedDate = file.birthDate.value_or(file.modificationDate);
    entry.filelength = isRegular(file) ? file.content.size() : 0;
    entry.flag = isRegular(file) ? 4 : 0;
    entry.properties = file.properties;
  }
  return entries;
}

void writeBackup(const std::string& folder, const SampleBackup& backup) {
  const Folder writer(folder, backup);
  switch (backup.generation) {
    case Generation::TwoSingleForm:
      writer.writeManifestWithFiles();
      writer.writeSingles();
      break;
    case Generation::TwoPairForm:
    case Generation::Three:
      writer.writeManifestWithFiles();
      writer.writePairs();
      break;
    case Generation::Four:
    case Generation::Five:
      writer.writeManifest({});
      writer.writeDatabase();
      break;
    case Generation::Ten:
      writer.writeManifest({});
      writer.writeStatus();
      writer.writeTable();
      break;
  }
  writer.writeInfo();
}

void writeFile(const std::string& path, std::string_view content) {
  std::error_code error;
  if (const std::string_view parent = parentPath(path); !parent.empty()) {
    std::filesystem::create_directories(parent, error);
  }
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (error || !file) {
    throw std::runtime_error("cannot write " + path);
  }
}

void setModificationDate(const std::string& path, Instant date) {
  std::error_code error;
  std::filesystem::last_write_time(path, std::chrono::file_clock::from_sys(date), error);
  if (error) {
    throw std::runtime_error("cannot set the time of " + path + ": " + error.message());
  }
}

}  // namespace snaplift::samples
