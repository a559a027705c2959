#pragma once

#include <QPoint>

class QString;

namespace snaplift {

class ImageBrowserView;

// Who is told what happens in an image browser, on the user interface's thread.
class ImageBrowserViewDelegate {
public:
  virtual ~ImageBrowserViewDelegate() = default;

  virtual void imageBrowserCellWasDoubleClickedAtIndex(ImageBrowserView&, int /*index*/) {}
  // The user wants to see a film.
  virtual void imageBrowserOpenItemAtIndex(ImageBrowserView&, int /*index*/) {}
  // The user wants the menu of the selected photos, at a point of the screen: with the right button
  // on one of them or on the header of their group, or with a key. There is at least one.
  virtual void imageBrowserContextMenuAtPoint(ImageBrowserView&, QPoint /*globalPoint*/) {}
  // The user begins to type. True where the delegate takes the text; otherwise it is the beginning
  // of a name to jump to, and what follows quickly belongs to it and is not asked for.
  virtual bool imageBrowserTakesTyping(ImageBrowserView&, const QString& /*text*/) { return false; }
  // The zoom that keys and wheel stop at.
  virtual double maxZoom() const { return 1.0; }
};

}  // namespace snaplift
