#include "decoders/FileListDecoder.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <tuple>
#include <utility>

#include "decoders/BackupPropertyList.h"
#include "decoders/PhotoSuffix.h"
#include "foundation/Parallel.h"

namespace snaplift {
namespace {

// Leaves of the entries with one base name the first: a small manifest could otherwise have one
// file read, and kept, a million times. The hashes spare most comparisons of names.
void dropRepeated(std::vector<ListedFile>& files) {
  std::vector<std::pair<std::size_t, ListedFile*>> order;
  order.reserve(files.size());
  for (ListedFile& file : files) {
    order.emplace_back(std::hash<std::string_view>()(file.baseName), &file);
  }
  std::ranges::sort(order, [](const auto& a, const auto& b) {
    return a.first != b.first
               ? a.first < b.first
               : std::tie(a.second->baseName, a.second) < std::tie(b.second->baseName, b.second);
  });
  std::string_view previous;
  for (const auto& [hash, file] : order) {
    if (file->baseName == previous) {
      file->baseName = {};  // no file's name
    } else {
      previous = file->baseName;
    }
  }
  std::erase_if(files, [](const ListedFile& file) { return file.baseName.empty(); });
}

// The entries of `domain`, in the listing's order, each base name once.
std::vector<ListedFile> listedFiles(const PropertyList& listing, std::string_view domain) {
  const PropertyListEntries entries = listing.root().valueForKey("Files").entries();
  std::vector<ListedFile> files;
  files.reserve(entries.size());
  for (const auto& [key, description] : entries) {
    const auto baseName = key.string();
    if (baseName && isFileName(*baseName) && description.valueForKey("Domain").equals(domain)) {
      files.push_back({*baseName, description.valueForKey("ModificationTime").date()});
    }
  }
  dropRepeated(files);
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
    return std::tie(a->path(), a->backupFileName()) < std::tie(b->path(), b->backupFileName());
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
  const auto manifest = readDictionary(backupPath(), "manifest.plist");
  Found found{readFileModels(manifest, Wanted::Media, stop)};
  if (stop.stop_requested()) {
    return;
  }
  const auto others = std::stable_partition(
      found.photos.begin(), found.photos.end(),
      [](const BackupFileModel& file) { return hasPhotoExtension(file.path()); });
  std::move(others, found.photos.end(), std::back_inserter(found.others));
  found.photos.erase(others, found.photos.end());
  setContents(knowsEncryption() && isEncrypted(manifest), std::move(found));
}

void FileListDecoder::visitFiles(const FileVisitor& visit) {
  const auto manifest = readDictionary(backupPath(), "manifest.plist");
  for (const BackupFileModel& model : readFileModels(manifest, Wanted::Inventory, {})) {
    visit({photoDomain(),
           model.path(),
           model.backupFileName(),
           model.filelength,
           model.modificationDate,
           {}});
  }
}

std::vector<BackupFileModel> FileListDecoder::readFileModels(
    const std::optional<PropertyList>& manifest, Wanted wanted, std::stop_token stop) const {
  const auto bytes = manifest ? manifest->root().valueForKey("Data").data() : std::nullopt;
  const auto listing = bytes ? PropertyList::parse(Bytes::copyOf(*bytes)) : std::nullopt;
  using Kind = PropertyListValue::Kind;
  if (!listing || listing->root().valueForKey("Files").kind() != Kind::Dictionary) {
    noteDamageOf(findFile(backupPath(), "manifest.plist"));
    return {};
  }
  const std::vector<ListedFile> files = listedFiles(*listing, photoDomain());
  const OpenFolder folder(backupPath());
  std::vector<std::optional<BackupFileModel>> read(files.size());
  parallelForFiles(
      files.size(), [&](std::size_t i) { read[i] = readFileModel(folder, files[i], wanted); },
      stop);
  return newestFirst(read);
}

bool FileListDecoder::isWanted(std::string_view path, Wanted wanted) {
  return wanted == Wanted::Inventory || hasPhotoExtension(path) || isInCameraRoll(path);
}

std::string FileListDecoder::fileName(const ListedFile& file, std::string_view extension) {
  std::string name;
  name.reserve(file.baseName.size() + extension.size());
  return name.append(file.baseName).append(extension);
}

std::optional<PropertyList> FileListDecoder::readDictionaryOf(const OpenFolder& folder,
                                                              const ListedFile& file,
                                                              std::string_view extension) {
  std::optional<Bytes> bytes = folder.readFile(fileName(file, extension));
  return bytes ? parseDictionary(std::move(*bytes)) : std::nullopt;
}

BackupFileModel FileListDecoder::fileModel(const ListedFile& file, std::string_view extension,
                                           std::string path) const {
  return BackupFileModel(backupPath(), std::move(path), fileName(file, extension));
}

std::string FileListDecoder::contentFileName(const BackupFileModel& photo) const {
  return photo.backupFileName();
}

PhotoInfo FileListDecoder::infoOf(const BackupFileModel& photo) const {
  PhotoInfo info = PhotoInfo::ofPath(photo.path());
  info.modificationDate = knownTime(photo.modificationDate);
  return info;
}

}  // namespace snaplift
