#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <string>

#include "foundation/Bytes.h"

namespace snaplift {

class ImageBrowserView;

// One photo as an image browser shows it. Items are made when a view asks for them and are shared
// with workers, which may keep one a little longer than the view does. All functions may be called
// from any thread, several at once; none of them may wait for the user interface's thread.
class ImageBrowserItem {
public:
  virtual ~ImageBrowserItem() = default;

  // What the photo is recognised by: equal for equal photos, different for all others.
  virtual std::string imageUID() const = 0;
  // The caption, which is also the name that a promised file is given.
  virtual std::string imageTitle() const = 0;
  // The bytes of the encoded picture, read anew at every call; nothing if they cannot be read.
  virtual std::optional<Bytes> imageRepresentation() const = 0;
  // Where the photo comes from, for its tooltip. Empty: nothing to say.
  virtual std::string imageOrigin() const { return {}; }
};

using ImageBrowserItemPointer = std::shared_ptr<const ImageBrowserItem>;

// What an image browser shows, asked for by index, so that 100,000 photos cost nothing until they
// are seen. Called on the user interface's thread only. Whatever changes here is told to the view
// with reloadData().
class ImageBrowserViewDataSource {
public:
  virtual ~ImageBrowserViewDataSource() = default;

  virtual int numberOfItemsInImageBrowser(const ImageBrowserView& browser) const = 0;
  // `index` is below the number of items. Never null.
  virtual ImageBrowserItemPointer imageBrowserItemAtIndex(const ImageBrowserView& browser,
                                                          int index) const = 0;
  // The caption alone: typing a name walks over all of them.
  virtual QString imageBrowserTitleAtIndex(const ImageBrowserView& browser, int index) const {
    return QString::fromStdString(imageBrowserItemAtIndex(browser, index)->imageTitle());
  }
};

// Who is told what happens in an image browser, on the user interface's thread.
class ImageBrowserViewDelegate {
public:
  virtual ~ImageBrowserViewDelegate() = default;

  virtual void imageBrowserCellWasDoubleClickedAtIndex(ImageBrowserView&, int /*index*/) {}
  // The zoom that keys and wheel stop at.
  virtual double maxZoom() const { return 1.0; }
};

}  // namespace snaplift
