#pragma once

#include <QString>

#include "widgets/thumbnails/ImageBrowserItem.h"

namespace snaplift {

class ImageBrowserView;

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

}  // namespace snaplift
