#pragma once

#include "decoders/PhotoInfo.h"
#include "formats/ManifestRecord.h"

namespace snaplift {

// What the record of a manifest database says of a photo. Its first time, called "creationDate", is
// the file's modification, and its third, "addedDate", the file's birth; the second is the last
// change of the file's status, for every photo the day of a restore, and tells nothing of a photo.
PhotoInfo infoOfRecord(const ManifestRecord& record);

}  // namespace snaplift
