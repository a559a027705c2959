#pragma once

#include <optional>
#include <string>

#include "foundation/Bytes.h"

namespace snaplift {

// The one thing that a photo asks of its backup: its bytes. It keeps the photo free of everything
// else that a backup is.
class ImageDataSource {
public:
  virtual ~ImageDataSource() = default;

  // The bytes of the photo with this unique path, read afresh from the backup on every call; absent
  // where they cannot be read. `reuse` is a buffer that is no longer needed: its storage is taken
  // for the result where it is large enough. Called from any thread, from several at once.
  virtual std::optional<Bytes> imageDataForPath(const std::string& uniquePath,
                                                Bytes reuse = {}) const = 0;
};

}  // namespace snaplift
