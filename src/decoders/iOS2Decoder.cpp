#include "decoders/iOS2Decoder.h"

#include <algorithm>
#include <utility>

#include "decoders/BackupPropertyList.h"

namespace snaplift {

std::optional<BackupFileModel> iOS2Decoder::readFileModel(const ListedFile& file,
                                                          PathFilter isWanted) const {
  auto list = readDictionaryAtPath(joinPath(backupPath(), file.baseName + ".mdinfo"));
  const bool isPair = list.has_value();
  BackupFileModel model = fileModel(file, isPair ? ".mddata" : ".mdbackup");
  const std::string contentFile = joinPath(backupPath(), model.backupFileName);
  if (!isPair) {
    list = readDictionaryAtPath(contentFile);
  }
  std::optional<std::string> path = list ? textUnderKey(*list, "Path") : std::nullopt;
  if (!path || !isWanted(*path)) {
    return std::nullopt;
  }
  model.path = std::move(*path);
  if (const auto attributes = fileAttributes(contentFile)) {
    model.modificationDate = attributes->modificationDate;
  }
  if (const auto bytes = isPair ? std::nullopt : list->root().valueForKey("Data").data()) {
    model.data = std::make_shared<const Bytes>(Bytes::copyOf(*bytes));
  }
  return model;
}

std::optional<Bytes> iOS2Decoder::dataOf(const BackupFileModel& photo, Bytes reuse) const {
  if (!photo.data) {
    return FileListDecoder::dataOf(photo, std::move(reuse));
  }
  reuse.resize(photo.data->size());
  std::ranges::copy(photo.data->view(), reuse.data());
  return reuse;
}

bool iOS2Decoder::holdsFileOf(const BackupFileModel& photo) const {
  return photo.data || FileListDecoder::holdsFileOf(photo);
}

}  // namespace snaplift
