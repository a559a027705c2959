#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "decoders/BackupFileModel.h"
#include "decoders/PhotoDecoder.h"
#include "foundation/files/File.h"
#include "foundation/propertylist/PropertyList.h"

namespace snaplift {

// One entry of the "Files" listing of a generation-3 or generation-2 "manifest.plist".
struct ListedFile {
  // The name of the entry's files inside the backup folder, without extension. Checked: it cannot
  // lead out of the folder. The manifest's own bytes.
  std::string_view baseName;
  std::optional<Instant> modificationTime;
};

// What the decoders of generations 3 and 2 do alike. Their "manifest.plist" lists a base name for
// each backed-up file; what the file is called on the device stands in a small property list of its
// own, so that a load opens thousands of files. Only the entries of one domain are opened, on
// several threads, each once. The photos are listed newest first; those without a date come last,
// and equal dates go by unique path.
class FileListDecoder : public PhotoDecoder<BackupFileModel> {
public:
  using PhotoDecoder::PhotoDecoder;

  void loadContents(std::stop_token stop = {}) override;
  void visitFiles(const FileVisitor& visit) override;

protected:
  // The domain that the generation keeps its photos in.
  virtual std::string_view photoDomain() const = 0;

  // Whether the generation's manifest has the flag of encryption.
  virtual bool knowsEncryption() const = 0;

  // The photos, films and other pictures with all that is needed to hand out their bytes, or every
  // file with its length.
  enum class Wanted { Media, Inventory };
  static bool isWanted(std::string_view path, Wanted wanted);

  // The record of one listed file; nothing where the entry's property list is missing or lacks
  // something, or its path is not wanted. `folder` is the backup's. Called from several threads at
  // once.
  virtual std::optional<BackupFileModel> readFileModel(const OpenFolder& folder,
                                                       const ListedFile& file,
                                                       Wanted wanted) const = 0;

  static std::string fileName(const ListedFile& file, std::string_view extension);

  // The property list in the entry's file of that extension, which begins with its dot.
  static std::optional<PropertyList> readDictionaryOf(const OpenFolder& folder,
                                                      const ListedFile& file,
                                                      std::string_view extension);

  // A record of this backup whose content is the entry's file of that extension.
  BackupFileModel fileModel(const ListedFile& file, std::string_view extension,
                            std::string path) const;

  std::string contentFileName(const BackupFileModel& photo) const override;
  PhotoInfo infoOf(const BackupFileModel& photo) const override;

private:
  std::vector<BackupFileModel> readFileModels(const std::optional<PropertyList>& manifest,
                                              Wanted wanted, std::stop_token stop) const;
};

}  // namespace snaplift
