#pragma once

#include <QAbstractScrollArea>
#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

#include "widgets/desktop/TypeSelect.h"
#include "widgets/photogrid/GridCellPainter.h"
#include "widgets/photogrid/GridLayout.h"
#include "widgets/photogrid/GridSelection.h"
#include "widgets/photogrid/ImageBrowserViewDataSource.h"
#include "widgets/photogrid/ImageBrowserViewDelegate.h"

class QNativeGestureEvent;
class QPainter;

namespace snaplift {

class PhotoPreview;
class PromisedFilesSource;
class ThumbnailProvider;

// A grid of photos that can be selected, zoomed and looked at, for any items that answer identity,
// title and bytes, in groups where the data source has them. It keeps nothing for a photo but a bit
// of the selection: positions are computed (GridLayout), captions and items are asked for as they
// come into sight, and thumbnails are made on workers (ThumbnailProvider). Selection and focus have
// one owner, GridSelection. So the view stands on a scroll area: an item view would keep both a
// second time.
//
// Data source and delegate are not owned and outlive the view or are taken back with null.
class ImageBrowserView : public QAbstractScrollArea {
  Q_OBJECT
  Q_PROPERTY(float zoomValue READ zoomValue WRITE setZoomValue NOTIFY zoomValueChanged)

public:
  static constexpr float smallestZoom = 0.1F;
  static constexpr float initialZoom = 0.3F;

  explicit ImageBrowserView(QWidget* parent = nullptr);
  ~ImageBrowserView() override;

  void setDataSource(const ImageBrowserViewDataSource* dataSource);
  void setDelegate(ImageBrowserViewDelegate* delegate) { m_delegate = delegate; }
  ImageBrowserViewDelegate* delegate() const { return m_delegate; }

  // Shows what the data source now has. Selection and focus are empty afterwards and the view is
  // scrolled to its top.
  void reloadData();
  // The same where the photos are those from before in another order or other groups, or only some
  // of them, or more: selection, focus, the photo at the top of the view and an open preview stay.
  // `newIndexOf` each old index, or -1 for a photo that is not shown any more; for that of the top,
  // the nearest that is still shown. Called for what is selected and near the top, here only.
  void rearrangeData(const std::function<int(int oldIndex)>& newIndexOf);

  int itemCount() const { return m_layout.itemCount(); }
  ImageBrowserItemPointer itemAtIndex(int index) const;
  QString titleAtIndex(int index) const;
  // What else is known of it, found out when it is asked for: pixels, what is wrong, and what the
  // item has to say.
  QStringList descriptionAtIndex(int index) const;
  // The best thumbnail that is known; null for none. Valid until the event loop runs.
  const Thumbnail* thumbnailAtIndex(int index) const;

  // The photo whose cell holds a point of the viewport, or nothing.
  std::optional<int> indexOfItemAtPoint(QPoint point) const;
  // The cell of a photo in coordinates of the viewport, seen or not.
  QRect itemFrameAtIndex(int index) const;

  // 0 without groups. Below, `group` is less than it.
  int groupCount() const { return m_layout.groupCount(); }
  IndexRange itemsOfGroup(int group) const { return m_layout.itemsOfGroup(group); }
  // There is at least one group.
  int groupOfItemAtIndex(int index) const { return m_layout.groupOf(index); }
  QString titleOfGroup(int group) const;
  // "12 Photos", in the user's language.
  QString countTextOfGroup(int group) const;
  // The header in coordinates of the viewport, seen or not: that of the group at the top stays
  // there until the next one pushes it out.
  QRect headerFrameOfGroup(int group) const;
  std::optional<int> groupWithHeaderAtPoint(QPoint point) const;
  // What a click on its header does with these modifiers; a group outside does nothing.
  void selectGroup(int group, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

  // Whether there is a second line under the photos (ImageBrowserItem::imageSubtitle), as long as
  // they are large enough for one.
  bool showsSubtitles() const { return m_showsSubtitles; }
  void setShowsSubtitles(bool shows);

  const IndexSet& selectionIndexes() const { return m_selection.selected(); }
  void setSelectionIndexes(const IndexSet& indexes);
  // The photo that the keyboard acts on: before a first key or click, the first that is selected
  // or else the first in sight. -1 only without photos.
  int focusedIndex() const;

  // Any finite value is taken; cells have a smallest and a largest size. The first visible photo
  // stays where it is, or the photo that zooming began about.
  float zoomValue() const { return m_zoomValue; }
  void setZoomValue(float zoom);
  // The same with the photo under a point of the viewport staying where it is.
  void setZoomValueAboutPoint(float zoom, QPoint point);

  bool isPreviewOpen() const;
  // Null unless it is open.
  PhotoPreview* preview() const { return m_preview; }
  void setPreviewOpen(bool open);
  // Moves the focus, selects that photo alone and scrolls to it; an index outside does nothing.
  void stepTo(int index);
  // While suspended no photo is read or decoded.
  void setThumbnailsSuspended(bool suspended);
  bool isLoadingThumbnails() const;

  // Scrolls as little as shows the whole cell; an index outside does nothing.
  void scrollToIndex(int index);

public slots:
  void selectAll();
  void deselectAll();
  void invertSelection();
  // Of the preview while it is open.
  void zoomIn();
  void zoomOut();
  void zoomToInitialSize();

signals:
  void selectionIndexesChanged();
  void zoomValueChanged(float zoom);

protected:
  // One mouse gesture with the left button, and the pinch: what a subclass changes. mouseDragged()
  // is first called when the pointer has moved far enough to mean it.
  virtual void mouseDown(QMouseEvent* event);
  virtual void mouseDragged(QMouseEvent* event);
  virtual void mouseUp(QMouseEvent* event);
  virtual void magnifyWithEvent(QNativeGestureEvent* event);
  // Drags the selected photos as promised files of `source`, which belongs to this view; returns
  // when the drag is over. `rect` is where the picture of the drag is, in the viewport. The one
  // place that begins a drag: tests override it.
  virtual void dragPromisedFilesOfTypesFromRectSourceSlideBackEvent(const QStringList& types,
                                                                    const QRect& rect,
                                                                    PromisedFilesSource& source,
                                                                    bool slideBack,
                                                                    QMouseEvent* event);

  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;

private:
  // A photo, or a point of it, that is to stay where it is while the layout changes.
  struct Anchor {
    int index;
    double fraction;  // of the row's height, from its top
    QPoint at;        // in the viewport
  };
  struct Band {
    QPoint from, to;  // in content coordinates
    QRect rect() const { return QRect(from, to).normalized(); }
  };
  enum class OnRelease { Nothing, SelectOnly, Toggle, SelectGroup };

  void askForContent();
  static int nearestShown(int oldIndex, int oldCount,
                          const std::function<int(int oldIndex)>& indexNow);
  GridMeasures measures() const;
  void relayout();
  void updateScrollBar();
  void holdPhotoAt(QPoint point);
  Anchor anchorOfFirstVisible() const;
  QPoint zoomPoint() const;
  void zoomBy(double factor, QPoint point);
  double largestZoom() const;

  int scrolled() const;
  QPoint contentPoint(QPoint viewportPoint) const;
  QRect viewportRect(const QRect& contentRect) const;
  IndexRange visibleRange() const;
  void lookAtVisible();
  void paintHeaders(QPainter& painter, const QRegion& region);
  QString toolTipOf(int index) const;

  // Tells of the new selection and focus and paints them.
  void selectionDidChange(const IndexSet& before, int focusBefore);
  void changeSelection(const std::function<void()>& change);

  void beginBand(QPoint viewportPoint, bool keep);
  void moveBand(QPoint viewportPoint);
  void endBand();
  void scrollWithBand();
  bool handleZoomKey(const QKeyEvent& event);
  bool handleMoveKey(const QKeyEvent& event);
  bool handleCommandKey(const QKeyEvent& event);
  void handleTyping(const QKeyEvent& event);
  int moveTarget(int key);
  int moveTargetInColumn(int key);
  void selectForMenu(QPoint viewportPoint);
  void askForMenuByKey();

  const ImageBrowserViewDataSource* m_dataSource = nullptr;
  ImageBrowserViewDelegate* m_delegate = nullptr;
  ThumbnailProvider* m_thumbnails;
  PhotoPreview* m_preview = nullptr;

  float m_zoomValue = initialZoom;
  GridCellMetrics m_metrics;
  bool m_showsSubtitles = false;
  std::vector<ImageBrowserGroup> m_groups;  // as many as the layout has
  GridLayout m_layout;
  std::optional<Anchor> m_anchor;  // held until the user scrolls
  bool m_isAdjusting = false;      // the scroll position follows the layout
  bool m_scrollsBackwards = false;
  QTimer m_lookTimer;

  GridSelection m_selection;
  TypeSelect m_typeSelect;
  // The column that the keys go up and down in, also through rows that have no photo there: for as
  // long as the focus stays where they led it.
  struct {
    int focus = -1;
    int column = 0;
  } m_keyColumn;
  std::optional<QPoint> m_pressedAt;  // in the viewport; while the left button is down
  bool m_isDragging = false;
  OnRelease m_onRelease = OnRelease::Nothing;
  int m_pressedIndex = -1;  // of a photo, or of the group whose header was pressed
  std::optional<Band> m_band;
  QTimer m_bandTimer;
};

}  // namespace snaplift
