#include "widgets/photogrid/ImageBrowserView.h"

#include <QHelpEvent>
#include <QLocale>
#include <QNativeGestureEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>

#include "widgets/desktop/PlainText.h"
#include "widgets/desktop/SelectionColors.h"
#include "widgets/photogrid/GridHeader.h"
#include "widgets/photogrid/ImageBrowserAccessible.h"
#include "widgets/photogrid/PhotoPreview.h"
#include "widgets/thumbnails/ThumbnailProvider.h"

namespace snaplift {
namespace {

constexpr int decorationMargin = 8;  // how far selection and focus reach out of a cell

QRect decorated(const QRect& cell) {
  return cell.adjusted(-decorationMargin, -decorationMargin, decorationMargin, decorationMargin);
}

}  // namespace

ImageBrowserView::ImageBrowserView(QWidget* parent)
    : QAbstractScrollArea(parent), m_thumbnails(new ThumbnailProvider(this)) {
  ImageBrowserAccessible::install();
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::StrongFocus);
  setFrameShape(NoFrame);
  m_lookTimer.setSingleShot(true);
  connect(&m_lookTimer, &QTimer::timeout, this, &ImageBrowserView::lookAtVisible);
  constexpr int bandFrame = 20;  // milliseconds
  m_bandTimer.setInterval(bandFrame);
  connect(&m_bandTimer, &QTimer::timeout, this, &ImageBrowserView::scrollWithBand);
  connect(m_thumbnails, &ThumbnailProvider::thumbnailsChanged, this,
          [this](const std::vector<int>& indexes) {
            for (const int index : indexes) {
              viewport()->update(itemFrameAtIndex(index));
            }
          });
}

// The preview holds on to the view, so it goes before the view's own parts do.
ImageBrowserView::~ImageBrowserView() {
  delete m_preview;
}

// Layout

std::optional<int> ImageBrowserView::indexOfItemAtPoint(QPoint point) const {
  const int index = groupWithHeaderAtPoint(point) ? -1 : m_layout.indexAt(contentPoint(point));
  return index >= 0 ? std::optional(index) : std::nullopt;
}

QRect ImageBrowserView::itemFrameAtIndex(int index) const {
  return viewportRect(m_layout.cellRect(index));
}

QPoint ImageBrowserView::contentPoint(QPoint viewportPoint) const {
  return viewportPoint + QPoint(0, scrolled());
}

QRect ImageBrowserView::viewportRect(const QRect& contentRect) const {
  return contentRect.translated(0, -scrolled());
}

IndexRange ImageBrowserView::visibleRange() const {
  const int top = scrolled();
  return m_layout.rowsBetween(top, top + viewport()->height() - 1);
}

GridMeasures ImageBrowserView::measures() const {
  // The font of headers is loaded where there are some.
  return {viewport()->width(), m_metrics.cellSize(),
          m_groups.empty() ? 0 : gridHeaderHeight(font()), isRightToLeft()};
}

void ImageBrowserView::relayout() {
  const Anchor anchor = m_anchor.value_or(anchorOfFirstVisible());
  m_metrics = GridCellMetrics::forZoom(m_zoomValue, font(), m_showsSubtitles);
  m_layout.arrange(measures());
  m_isAdjusting = true;
  updateScrollBar();
  if (m_layout.itemCount() > 0) {
    const int row = m_layout.cellRect(anchor.index).top();
    verticalScrollBar()->setValue(row + qRound(anchor.fraction * m_layout.rowHeight()) -
                                  anchor.at.y());
    m_anchor = anchor;
  }
  m_isAdjusting = false;
  m_lookTimer.start(0);
  viewport()->update();
}

void ImageBrowserView::updateScrollBar() {
  const int height = viewport()->height();
  verticalScrollBar()->setRange(0, std::max(m_layout.contentHeight() - height, 0));
  verticalScrollBar()->setPageStep(std::max(height - m_layout.headerHeight(), 1));
  verticalScrollBar()->setSingleStep(std::max(m_layout.rowHeight() / 3, 20));
}

int ImageBrowserView::scrolled() const {
  return verticalScrollBar()->value();
}

void ImageBrowserView::scrollContentsBy(int, int dy) {
  if (!m_isAdjusting) {
    m_anchor.reset();
    m_scrollsBackwards = dy > 0;
  }
  // A band is painted over everything and moves against the photos; so does the header at the top.
  if (m_band) {
    viewport()->update();
  } else {
    viewport()->scroll(0, dy);
    viewport()->update(0, 0, viewport()->width(), m_layout.headerHeight() + std::max(dy, 0));
  }
  m_lookTimer.start(0);
}

void ImageBrowserView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  if (m_preview != nullptr && !m_preview->isWindow()) {
    m_preview->setGeometry(rect());
  }
  relayout();
}

// Painting

void ImageBrowserView::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  GridCellPainter cells(
      painter, palette().color(QPalette::Text),
      selectionColors(palette(), QPalette::Text, QPalette::Base, isActiveWindow() && hasFocus()),
      m_metrics);
  const QRect dirty = decorated(event->rect()).translated(0, scrolled());
  const bool showsFocus = hasFocus() && !isPreviewOpen();
  m_layout.forEachRunIn(dirty, [&](IndexRange run) {
    for (int index = run.first; index <= run.last; ++index) {
      const QRect frame = itemFrameAtIndex(index);
      if (event->region().intersects(decorated(frame))) {
        const ImageBrowserItemPointer item = itemAtIndex(index);
        cells.draw(
            {frame, plainText::shortened(item->imageTitle()),
             m_metrics.subtitleHeight > 0 ? plainText::shortened(item->imageSubtitle()) : QString(),
             m_thumbnails->find(item->imageUID()), selectionIndexes().contains(index),
             showsFocus && index == focusedIndex(), item->isLivePhoto()});
      }
    }
  });
  paintHeaders(painter, event->region());
  if (m_band) {
    cells.drawBand(viewportRect(m_band->rect()));
  }
}

void ImageBrowserView::paintHeaders(QPainter& painter, const QRegion& region) {
  if (groupCount() == 0) {
    return;
  }
  const int top = scrolled();
  const int last = m_layout.groupAt(top + viewport()->height());
  for (int group = m_layout.groupAt(top); group <= last; ++group) {
    const QRect frame = headerFrameOfGroup(group);
    if (region.intersects(frame)) {
      drawGridHeader(painter,
                     {frame, m_layout.sideMargin(), titleOfGroup(group), countTextOfGroup(group),
                      m_layout.headerRect(group, 0).top() < frame.top() + top, isRightToLeft()},
                     font(), palette());
    }
  }
}

void ImageBrowserView::lookAtVisible() {
  // The pending look is void: what is visible is looked at now.
  m_lookTimer.stop();
  if (isVisible()) {
    m_thumbnails->setSight({visibleRange(), m_scrollsBackwards,
                            qCeil(m_metrics.picture.width() * viewport()->devicePixelRatio())});
  }
}

void ImageBrowserView::showEvent(QShowEvent* event) {
  QAbstractScrollArea::showEvent(event);
  m_lookTimer.start(0);
}

void ImageBrowserView::hideEvent(QHideEvent* event) {
  QAbstractScrollArea::hideEvent(event);
  m_thumbnails->setSight({});
}

void ImageBrowserView::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  if (event->type() == QEvent::ActivationChange) {
    viewport()->update();
  } else if (event->type() == QEvent::FontChange ||
             event->type() == QEvent::LayoutDirectionChange) {
    relayout();
  }
}

void ImageBrowserView::setShowsSubtitles(bool shows) {
  if (shows != m_showsSubtitles) {
    m_showsSubtitles = shows;
    relayout();
  }
}

bool ImageBrowserView::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::NativeGesture) {
    auto* gesture = static_cast<QNativeGestureEvent*>(event);
    if (gesture->gestureType() == Qt::ZoomNativeGesture) {
      holdPhotoAt(gesture->position().toPoint());
      magnifyWithEvent(gesture);
      return true;
    }
  } else if (event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    const std::optional<int> index = indexOfItemAtPoint(help->pos());
    QToolTip::showText(help->globalPos(), index ? toolTipOf(*index) : QString(), viewport(),
                       index ? itemFrameAtIndex(*index) : QRect());
    return true;
  }
  return QAbstractScrollArea::viewportEvent(event);
}

QString ImageBrowserView::toolTipOf(int index) const {
  const QString title = plainText::shortened(itemAtIndex(index)->imageTitle());
  const QStringList lines = QStringList(title) + descriptionAtIndex(index);
  return plainText::toolTip(lines.join('\n'));
}

QStringList ImageBrowserView::descriptionAtIndex(int index) const {
  const ImageBrowserItemPointer item = itemAtIndex(index);
  const Thumbnail* known = m_thumbnails->find(item->imageUID());
  const Thumbnail thumbnail = known != nullptr ? *known : Thumbnail();
  QStringList measures;
  if (thumbnail.isFilm) {
    measures << tr("Film");
  }
  if (item->isLivePhoto()) {
    measures << tr("Live Photo");
  }
  if (thumbnail.filmLength) {
    measures << filmLengthText(*thumbnail.filmLength);
  }
  if (thumbnail.photoSize.isValid()) {
    measures
        << tr("%1 × %2 pixels").arg(thumbnail.photoSize.width()).arg(thumbnail.photoSize.height());
  }
  QStringList lines{measures.join(", "), troubleOf(thumbnail).sentence};
  lines += plainText::shortened(item->imageDescription(thumbnail.byteCount)).split('\n');
  lines.removeAll(QString());
  return lines;
}

// Preview

bool ImageBrowserView::isPreviewOpen() const {
  return m_preview != nullptr;
}

void ImageBrowserView::setPreviewOpen(bool open) {
  if (open == isPreviewOpen() || (open && itemCount() == 0)) {
    return;
  }
  if (open) {
    stepTo(focusedIndex());
    m_preview = new PhotoPreview(this);
    m_preview->setGeometry(rect());
    m_preview->showPhoto(focusedIndex());
    m_preview->show();
    m_preview->setFocus();
  } else {
    const bool hadFocus = m_preview->hasFocus();
    if (m_preview->isWindow()) {
      window()->activateWindow();
    }
    m_preview->hide();
    m_preview->deleteLater();
    m_preview = nullptr;
    if (hadFocus) {
      setFocus();
    }
  }
  // The photo in view is worth more than the grid behind it.
  m_thumbnails->setSuspended(open);
  viewport()->update();
}

}  // namespace snaplift
