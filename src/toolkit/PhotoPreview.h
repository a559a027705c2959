#pragma once

#include <QWidget>
#include <memory>

#include "toolkit/ThumbnailLoader.h"

namespace snaplift {

class ImageBrowserView;

// One photo that fills its browser view: what the view has of it at once, then the photo decoded to
// this size on a worker of the preview's own. Arrow keys step through the view's photos, Space,
// Escape and a double click close it. It exists only while it is open.
class PhotoPreview : public QWidget {
  Q_OBJECT

public:
  explicit PhotoPreview(ImageBrowserView* view);
  ~PhotoPreview() override;

  void showPhoto(int index);
  // What is painted now; Ready once the photo itself is decoded.
  const Thumbnail& photo() const { return m_photo; }

protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

private:
  void request();
  void takeResults();
  QRect photoArea() const;

  ImageBrowserView* m_view;
  int m_index = -1;
  ImageBrowserItemPointer m_item;
  Thumbnail m_photo;
  std::shared_ptr<PhotoPreview*> m_self;  // what a hand-over holds, weakly
  std::unique_ptr<ThumbnailLoader> m_loader;
};

}  // namespace snaplift
