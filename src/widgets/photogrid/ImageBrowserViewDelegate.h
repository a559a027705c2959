#pragma once

namespace snaplift {

class ImageBrowserView;

// Who is told what happens in an image browser, on the user interface's thread.
class ImageBrowserViewDelegate {
public:
  virtual ~ImageBrowserViewDelegate() = default;

  virtual void imageBrowserCellWasDoubleClickedAtIndex(ImageBrowserView&, int /*index*/) {}
  // The user wants to see a film.
  virtual void imageBrowserOpenItemAtIndex(ImageBrowserView&, int /*index*/) {}
  // The zoom that keys and wheel stop at.
  virtual double maxZoom() const { return 1.0; }
};

}  // namespace snaplift
