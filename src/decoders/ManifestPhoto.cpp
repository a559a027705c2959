#include "decoders/ManifestPhoto.h"

namespace snaplift {

PhotoInfo infoOfRecord(const ManifestRecord& record) {
  PhotoInfo info = PhotoInfo::ofPath(record.path());
  info.size = record.filelength();
  info.modificationDate = knownTime(record.creationDate());
  info.birthDate = knownTime(record.addedDate());
  return info;
}

}  // namespace snaplift
