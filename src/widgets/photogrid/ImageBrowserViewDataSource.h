#pragma once

#include <QString>
#include <string>
#include <vector>

#include "widgets/thumbnails/ImageBrowserItem.h"

namespace snaplift {

class ImageBrowserView;

// Photos that stand together, below a header with the title (UTF-8) and their number.
struct ImageBrowserGroup {
  std::string title;
  int count = 0;
};

// What an image browser shows, asked for by index, so that 100,000 photos cost nothing until they
// are seen. Called on the user interface's thread only. Whatever changes here is told to the view
// with reloadData() or rearrangeData(), and only then are numbers and groups asked for.
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
  // The groups of all items in order; their counts sum to the number of items, or else, and where
  // there are none, the photos are shown without groups.
  virtual std::vector<ImageBrowserGroup> groupsOfItemsInImageBrowser(
      const ImageBrowserView& /*browser*/) const {
    return {};
  }
};

}  // namespace snaplift
