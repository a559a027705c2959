#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "backups/ImageItem.h"
#include "export/ExportFolders.h"
#include "export/ExportTypes.h"
#include "foundation/files/FileError.h"
#include "foundation/files/NewFile.h"

namespace snaplift {

// A photo whose bytes are in its folder and whose name is still to come.
struct WrittenPhoto {
  ExportedPhoto outcome;
  ExportFolder* folder = nullptr;  // none of a photo whose name cannot be a file's
  std::shared_ptr<const OutputFolder> output;
  std::unique_ptr<NewFile> file;  // none after a failure, of a skipped photo and in a dry run
};

// What is done with one photo of an export, in two steps: many are written at once, and get their
// names one after the other. `folders` outlives the object.
class PhotoWriter {
public:
  PhotoWriter(ExportFolders& folders, const ExportOptions& options)
      : m_folders(folders), m_options(options) {}

  // From any number of threads.
  WrittenPhoto write(const PhotoToExport& photo) const;

  // One photo at a time, in the order in which they are to be named. Does nothing after a failure.
  void giveName(WrittenPhoto& written) const;

  // Whether `photo` failed because nothing more can be written at all.
  bool isDestinationLost(const WrittenPhoto& photo) const;

private:
  std::optional<FileError> writeFile(WrittenPhoto& written) const;
  void skip(WrittenPhoto& written, const std::string& name) const;
  void nameInDryRun(WrittenPhoto& written) const;

  ExportFolders& m_folders;
  const ExportOptions m_options;
};

}  // namespace snaplift
