#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "decoders/PhotoInfo.h"
#include "foundation/Bytes.h"

namespace snaplift {

// What a photo asks of its backup: its bytes, where they stand, and what is known of them. It keeps
// the photo free of everything else that a backup is. Called from any thread, from several at once.
class ImageDataSource {
public:
  virtual ~ImageDataSource() = default;

  // The bytes of the photo with this unique path, read afresh from the backup on every call; absent
  // where they cannot be read. `reuse` is a buffer that is no longer needed: its storage is taken
  // for the result where it is large enough.
  virtual std::optional<Bytes> imageDataForPath(const std::string& uniquePath,
                                                Bytes reuse = {}) const = 0;

  // What the backup knows of its photo number `index`, and what is there of the photo's content
  // file; see BackupDecoderDelegate. A source that knows no more than paths answers nothing.
  virtual std::optional<PhotoInfo> photoInfo(std::size_t) const { return std::nullopt; }
  virtual ContentState contentState(std::size_t) const { return ContentState::Whole; }

  // The small encoded picture that the device made of photo number `index`, read afresh.
  virtual std::optional<Bytes> thumbnailData(std::size_t) const { return std::nullopt; }

  // The path of the file whose whole content that photo is, so that it can be copied without being
  // read. Empty where the photo stands inside another file, and for an unknown path.
  virtual std::string contentFileForPath(const std::string& /*uniquePath*/) const { return {}; }

  // Whether the bytes are encrypted, and so no photo's.
  virtual bool encrypted() const { return false; }
};

}  // namespace snaplift
