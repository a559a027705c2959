#pragma once

#include <QPixmap>
#include <QWidget>

namespace snaplift {

// The picture of a refused drag on its way back to where it came from. It is a window of its own,
// lets the pointer through, and deletes itself when it has arrived.
class DragSlideBack : public QWidget {
  Q_OBJECT

public:
  // From one place of the screen to another (top left corners). Nothing is shown where the desktop
  // wants little motion or lets no window choose its place.
  static void begin(const QPixmap& picture, QPoint from, QPoint to);

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  explicit DragSlideBack(const QPixmap& picture);

  QPixmap m_picture;
};

}  // namespace snaplift
