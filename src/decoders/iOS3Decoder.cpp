#include "decoders/iOS3Decoder.h"

#include <utility>

#include "decoders/BackupPropertyList.h"

namespace snaplift {

std::optional<BackupFileModel> iOS3Decoder::readFileModel(const ListedFile& file,
                                                          PathFilter isWanted) const {
  const auto info = readDictionaryAtPath(joinPath(backupPath(), file.baseName + ".mdinfo"));
  const auto bytes = info ? info->root().valueForKey("Metadata").data() : std::nullopt;
  const auto metadata = bytes ? PropertyList::parse(Bytes::copyOf(*bytes)) : std::nullopt;
  std::optional<std::string> path = metadata ? textUnderKey(*metadata, "Path") : std::nullopt;
  if (!path || !isWanted(*path)) {
    return std::nullopt;
  }
  BackupFileModel model = fileModel(file, ".mddata");
  model.path = std::move(*path);
  model.modificationDate = file.modificationTime;
  return model;
}

}  // namespace snaplift
