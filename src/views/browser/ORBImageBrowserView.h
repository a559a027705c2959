#pragma once

#include <string>
#include <vector>

#include "views/browser/ORBImageBrowserViewDelegate.h"
#include "widgets/photogrid/ImageBrowserView.h"
#include "widgets/promises/PromisedFiles.h"

namespace snaplift {

// The photo browser of the main window. Beyond its base: a drag that begins on a photo takes the
// selected photos out of the application as promised files; a drag that begins on empty space stays
// a rubber band; and a pinch adds its magnification to the zoom, down to 0.1 and from below the
// delegate's maxZoom.
class ORBImageBrowserView : public ImageBrowserView, public PromisedFilesSource {
  Q_OBJECT

public:
  explicit ORBImageBrowserView(QWidget* parent = nullptr) : ImageBrowserView(parent) {}

  // Not owned; outlives the view or is taken back with null.
  void setDelegate(ORBImageBrowserViewDelegate* delegate);

  // Whether the current mouse gesture began on empty space.
  bool dragSelectInProgress() const { return m_dragSelectInProgress; }
  // The photos of the most recent drag-out, in the order of the grid.
  const std::vector<ImageBrowserItemPointer>& itemsInCurrentPromiseDragOperation() const {
    return m_itemsInCurrentPromiseDragOperation;
  }

  // PromisedFilesSource: the delegate's answers, or none.
  std::vector<std::string> namesOfPromisedFilesDroppedAtDestination(
      const std::string& folder) override;
  std::string firstPromisedName() const override;
  std::shared_ptr<PromisedFileList> promisedFiles() override;

protected:
  void mouseDown(QMouseEvent* event) override;
  void mouseDragged(QMouseEvent* event) override;
  void mouseUp(QMouseEvent* event) override;
  void magnifyWithEvent(QNativeGestureEvent* event) override;

private:
  ORBImageBrowserViewDelegate* m_exporter = nullptr;
  std::vector<ImageBrowserItemPointer> m_itemsInCurrentPromiseDragOperation;
  bool m_dragSelectInProgress = false;
  bool m_hasDraggedOut = false;  // in this gesture
};

}  // namespace snaplift
