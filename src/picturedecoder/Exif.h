#pragma once

#include <memory>

#include "foundation/Bytes.h"
#include "picturedecoder/protocol/PictureFacts.h"

struct _ExifData;  // libexif's

namespace snaplift {

// What a camera wrote into a photo's file beside the pixels, read by libexif. Where there is
// nothing, or nothing that can be read, every answer is the empty one.
class Exif {
public:
  // `bytes` begin with "Exif", as in the segment of a JPEG file. They are not needed afterwards.
  static Exif read(ByteView bytes);

  int orientation() const;   // 1 to 8
  ByteView preview() const;  // the small file inside, as long as this object lives; may be empty
  PictureFacts facts() const;

private:
  struct End {
    void operator()(_ExifData* data) const;
  };
  std::unique_ptr<_ExifData, End> m_data;
};

}  // namespace snaplift
