#include "decoders/iOS3Decoder.h"

#include <utility>

#include "decoders/BackupPropertyList.h"

namespace snaplift {

std::optional<BackupFileModel> iOS3Decoder::readFileModel(const OpenFolder& folder,
                                                          const ListedFile& file,
                                                          Wanted wanted) const {
  const auto info = readDictionaryOf(folder, file, ".mdinfo");
  const auto bytes = info ? info->root().valueForKey("Metadata").data() : std::nullopt;
  const auto metadata = bytes ? PropertyList::parse(Bytes::copyOf(*bytes)) : std::nullopt;
  std::optional<std::string> path = metadata ? textUnderKey(*metadata, "Path") : std::nullopt;
  if (!path) {
    noteDamageOf(joinPath(backupPath(), fileName(file, ".mdinfo")));
  }
  if (!path || !isWanted(*path, wanted)) {
    return std::nullopt;
  }
  BackupFileModel model = fileModel(file, ".mddata", std::move(*path));
  model.modificationDate = file.modificationTime;
  if (wanted == Wanted::Inventory) {
    const auto attributes = folder.fileAttributes(model.backupFileName());
    model.filelength = attributes ? attributes->size : 0;
  }
  return model;
}

}  // namespace snaplift
