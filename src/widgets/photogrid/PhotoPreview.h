#pragma once

#include <QPointF>
#include <QWidget>
#include <memory>
#include <vector>

#include "widgets/thumbnails/ThumbnailCache.h"
#include "widgets/thumbnails/ThumbnailLoader.h"

class QPushButton;
class QToolButton;

namespace snaplift {

class ImageBrowserView;

// One photo that fills its browser view: what the view has of it at once, then the photo decoded to
// this size on a worker of the preview's own, then the photos before and behind it, so that a step
// shows the next one without waiting. Arrow keys step through the view's photos; plus, minus, 0 and
// the wheel zoom, for which the full picture is decoded, and a drag moves it; F11 fills the screen;
// Space, Escape and a double click close it. Buttons do for the pointer what these keys do. Of a
// film it shows the still; of this and of a live photo, a button has the delegate open the film in
// a player. It exists only while it is open.
//
// To screen readers it is a picture with the photo's name, and its place in the list for a
// description.
class PhotoPreview : public QWidget {
  Q_OBJECT

public:
  // The factor of a key, and of one notch of the wheel, in the grid as well.
  static constexpr double zoomStep = 1.25;
  // The factor for an angle of the wheel, in eighths of a degree, as Qt has it.
  static double zoomOfWheel(int angle);

  explicit PhotoPreview(ImageBrowserView* view);
  ~PhotoPreview() override;

  void showPhoto(int index);
  // What is painted now; Ready once the photo itself is decoded.
  const Thumbnail& photo() const { return m_photo; }
  bool isLoading() const { return !m_loader->isIdle(); }
  // Where the photo is painted. It may be larger than the widget.
  QRectF photoRect() const;
  // How large the photo is painted, 1 where all of it is seen; the point of the widget stays where
  // it is in the photo.
  double zoom() const { return m_zoom; }
  void setZoom(double zoom, QPointF about);
  // By a factor, about the middle.
  void zoomBy(double factor);
  void toggleFullScreen();

protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

private:
  QToolButton* addButton(const QString& sign, const QString& name);
  void go(int key);
  int screenPixels() const;
  bool needsFullPicture() const;
  void request();
  void appendDecode(std::vector<ThumbnailRequest>& work, int index);
  void takeResults();
  void keep(ThumbnailResult&& result);
  bool hasFilm() const;
  QRect photoArea() const;
  QSizeF fittedSize() const;
  void moveTo(QPointF centre);
  QString title() const;
  QString place() const;

  ImageBrowserView* m_view;
  QToolButton* m_previous;
  QToolButton* m_next;
  QToolButton* m_close;
  QPushButton* m_player;
  int m_index = -1;
  int m_direction = 1;  // of the last step
  ImageBrowserItemPointer m_item;
  Thumbnail m_photo;
  ThumbnailCache m_neighbours;  // photos of the screen's size, the shown one among them
  double m_zoom = 1;
  QPointF m_centre;  // of the photo, from the middle of its area
  QPointF m_dragged;
  std::shared_ptr<PhotoPreview*> m_self;  // what a hand-over holds, weakly
  std::unique_ptr<ThumbnailLoader> m_loader;
};

}  // namespace snaplift
