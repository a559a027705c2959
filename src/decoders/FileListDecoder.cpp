#include "decoders/FileListDecoder.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "decoders/BackupPropertyList.h"
#include "decoders/PhotoSuffix.h"
#include "foundation/Parallel.h"

namespace snaplift {
namespace {

// The entries of `domain` in the listing that a manifest holds under "Data", in its order.
std::vector<ListedFile> listedFiles(const PropertyList& manifest, std::string_view domain) {
  std::vector<ListedFile> files;
  const std::optional<ByteView> bytes = manifest.root().valueForKey("Data").data();
  const auto listing = bytes ? PropertyList::parse(Bytes::copyOf(*bytes)) : std::nullopt;
  if (!listing) {
    return files;
  }
  for (const auto& [key, description] : listing->root().valueForKey("Files").entries()) {
    if (!description.valueForKey("Domain").equals(domain)) {
      continue;
    }
    const auto baseName = key.string();
    if (baseName && isFileName(*baseName)) {
      files.push_back({std::string(*baseName), description.valueForKey("ModificationTime").date()});
    }
  }
  return files;
}

// The records that were read: newest first, those without a date last, equal dates by path. Sorts
// pointers, since a record is large.
std::vector<BackupFileModel> newestFirst(std::vector<std::optional<BackupFileModel>>& read) {
  std::vector<BackupFileModel*> order;
  order.reserve(read.size());
  for (std::optional<BackupFileModel>& model : read) {
    if (model) {
      order.push_back(&*model);
    }
  }
  std::ranges::sort(order, [](const BackupFileModel* a, const BackupFileModel* b) {
    if (a->modificationDate != b->modificationDate) {
      return a->modificationDate > b->modificationDate;  // an absent date is less than any other
    }
    return std::tie(a->path, a->backupFileName) < std::tie(b->path, b->backupFileName);
  });
  std::vector<BackupFileModel> models;
  models.reserve(order.size());
  for (BackupFileModel* model : order) {
    models.push_back(std::move(*model));
  }
  return models;
}

}  // namespace

void FileListDecoder::loadContents(std::stop_token stop) {
  std::vector<BackupFileModel> photos = readFileModels(hasPhotoExtension, stop);
  if (!stop.stop_requested()) {
    setPhotos(std::move(photos));
  }
}

void FileListDecoder::visitFiles(const FileVisitor& visit) {
  const auto everyPath = [](std::string_view) { return true; };
  for (const BackupFileModel& model : readFileModels(everyPath, {})) {
    const auto attributes = fileAttributes(joinPath(backupPath(), model.backupFileName));
    const std::uint64_t length = model.data   ? model.data->size()
                                 : attributes ? attributes->size
                                              : 0;
    visit({photoDomain(), model.path, model.backupFileName, length, model.modificationDate, {}});
  }
}

std::vector<BackupFileModel> FileListDecoder::readFileModels(PathFilter isWanted,
                                                             std::stop_token stop) {
  const auto manifest = readDictionary(backupPath(), "manifest.plist");
  setEncrypted(knowsEncryption() && isEncrypted(manifest));
  if (!manifest) {
    return {};
  }
  const std::vector<ListedFile> files = listedFiles(*manifest, photoDomain());
  std::vector<std::optional<BackupFileModel>> read(files.size());
  parallelForFiles(
      files.size(), [&](std::size_t i) { read[i] = readFileModel(files[i], isWanted); }, stop);
  return newestFirst(read);
}

BackupFileModel FileListDecoder::fileModel(const ListedFile& file,
                                           std::string_view extension) const {
  BackupFileModel model;
  model.backupFolder = backupPath();
  model.backupFileName = file.baseName + std::string(extension);
  return model;
}

std::string FileListDecoder::contentFileName(const BackupFileModel& photo) const {
  return photo.backupFileName;
}

}  // namespace snaplift
