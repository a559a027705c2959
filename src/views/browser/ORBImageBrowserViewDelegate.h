#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "widgets/photogrid/ImageBrowserViewDelegate.h"
#include "widgets/promises/PromisedFiles.h"
#include "widgets/thumbnails/ImageBrowserItem.h"

namespace snaplift {

class ORBImageBrowserView;

// The delegate of the photo browser. User interface's thread.
class ORBImageBrowserViewDelegate : public ImageBrowserViewDelegate {
public:
  // Begins to export `items` into the folder `destination` (an absolute path) and answers their
  // file names in the same order, without waiting. Nothing: not implemented, and photos that are
  // dragged out go nowhere.
  virtual std::optional<std::vector<std::string>> imageBrowserExportItemsToDestination(
      ORBImageBrowserView& /*browser*/, const std::vector<ImageBrowserItemPointer>& /*items*/,
      const std::string& /*destination*/) {
    return std::nullopt;
  }

  // `items` as files of the program's own, for targets that do not say where they put them. Null:
  // not implemented, and such targets get nothing.
  virtual std::shared_ptr<PromisedFileList> imageBrowserFilesOfItems(
      ORBImageBrowserView& /*browser*/, const std::vector<ImageBrowserItemPointer>& /*items*/) {
    return nullptr;
  }
};

}  // namespace snaplift
