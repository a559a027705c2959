#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "foundation/Bytes.h"

namespace snaplift {

// One photo as an image browser shows it. Items are made when a view asks for them and are shared
// with workers, which may keep one a little longer than the view does. All functions may be called
// from any thread, several at once; none of them may wait for the user interface's thread.
class ImageBrowserItem {
public:
  virtual ~ImageBrowserItem() = default;

  // What the photo is recognised by: equal for equal photos, different for all others.
  virtual std::string imageUID() const = 0;
  // The caption, which is also the name of the photo's file.
  virtual std::string imageTitle() const = 0;
  // A second line below the caption, where there is room for one: asked for as often as the item is
  // painted, so it must be cheap. Empty: nothing to say.
  virtual std::string imageSubtitle() const { return {}; }
  // The bytes of the encoded picture, read anew at every call; nothing if they cannot be read.
  virtual std::optional<Bytes> imageRepresentation() const = 0;
  // Their first `size`, or all where there are fewer: enough for the preview in a camera's photo.
  virtual std::optional<Bytes> imageBeginning(std::size_t size) const = 0;
  // A small encoded picture that the source has beside the item, read anew at every call.
  virtual std::optional<Bytes> imageThumbnail() const { return std::nullopt; }
  // Whether that one, if there is one, is sooner shown than what the item's own bytes bring along.
  virtual bool isThumbnailFirst() const { return false; }
  // A film: its bytes, which may be many, are never read for a picture.
  virtual bool isFilm() const { return false; }
  virtual std::optional<std::chrono::milliseconds> filmLength() const { return std::nullopt; }
  // A photo that has a short film beside it.
  virtual bool isLivePhoto() const { return false; }
  // What can be told of the bytes without reading them. Looks at the disk at every call.
  enum class Content { Whole, Short, Unreadable, Missing };
  virtual Content imageContent() const { return Content::Whole; }
  // What else there is to know, one thing a line, in the user's words: for a tooltip and for
  // whoever hears rather than sees. `readBytes` is how many bytes the photo has, or 0 where nobody
  // has read them. Empty: nothing to say.
  virtual std::string imageDescription(std::int64_t /*readBytes*/) const { return {}; }
};

using ImageBrowserItemPointer = std::shared_ptr<const ImageBrowserItem>;

}  // namespace snaplift
