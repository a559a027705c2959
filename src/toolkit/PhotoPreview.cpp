#include "toolkit/PhotoPreview.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <algorithm>

#include "toolkit/ImageBrowserView.h"
#include "toolkit/MainThread.h"

namespace snaplift {
namespace {

// Photos are judged before a dark neutral ground, whatever the desktop's colours.
constexpr QRgb groundColor = qRgb(0x1c, 0x1c, 0x1e);
constexpr QRgb captionColor = qRgb(0xd6, 0xd6, 0xd8);
constexpr int margin = 24;

}  // namespace

PhotoPreview::PhotoPreview(ImageBrowserView* view)
    : QWidget(view), m_view(view), m_self(std::make_shared<PhotoPreview*>(this)) {
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  m_loader = std::make_unique<ThumbnailLoader>(
      [self = std::weak_ptr(m_self)] {
        mainThread::run([self] {
          if (const auto preview = self.lock()) {
            (*preview)->takeResults();
          }
        });
      },
      1);
}

PhotoPreview::~PhotoPreview() = default;

void PhotoPreview::showPhoto(int index) {
  m_index = index;
  m_item = m_view->itemAtIndex(index);
  const Thumbnail* known = m_view->thumbnailAtIndex(index);
  m_photo = known != nullptr ? *known : Thumbnail();
  // What the grid decoded is only the first paint here.
  if (m_photo.state == Thumbnail::State::Ready) {
    m_photo.state = Thumbnail::State::Preview;
  }
  setAccessibleName(QString::fromStdString(m_item->imageTitle()));
  request();
  update();
}

void PhotoPreview::request() {
  if (m_item == nullptr || m_photo.isBroken()) {
    m_loader->setWork({});
    return;
  }
  const QSizeF device = QSizeF(photoArea().size()) * devicePixelRatio();
  const int pixels = thumbnailStep(qCeil(std::max(device.width(), device.height())));
  if (m_photo.state != Thumbnail::State::Ready || m_photo.pixels < pixels) {
    m_loader->setWork({{m_item, m_item->imageUID(), ThumbnailRequest::Kind::Decode, pixels, {}}});
  }
}

void PhotoPreview::takeResults() {
  for (ThumbnailResult& result : m_loader->takeResults()) {
    if (m_item != nullptr && result.uid == m_item->imageUID()) {
      m_photo = std::move(result.thumbnail);
      update();
    }
  }
}

QRect PhotoPreview::photoArea() const {
  const int caption = fontMetrics().height() + margin;
  return rect().adjusted(margin, margin, -margin, -caption - margin / 2);
}

void PhotoPreview::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(groundColor));
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  const QRect area = photoArea();
  painter.setPen(QColor(captionColor));
  if (!m_photo.picture.isNull() && !area.isEmpty()) {
    QSize size = m_photo.photoSize;
    if (size.width() > area.width() || size.height() > area.height()) {
      size.scale(area.size(), Qt::KeepAspectRatio);
    }
    QRect target(QPoint(), size.expandedTo(QSize(1, 1)));
    target.moveCenter(area.center());
    painter.drawImage(target, m_photo.picture);
  } else if (m_photo.isBroken()) {
    painter.drawText(area, Qt::AlignCenter, "Cannot be shown");
  }
  const QString place =
      QString("%1 of %2")
          .arg(locale().toString(m_index + 1), locale().toString(m_view->itemCount()));
  const QRect line(margin, height() - margin - fontMetrics().height(), width() - 2 * margin,
                   fontMetrics().height());
  const QString name = QString::fromStdString(m_item->imageTitle());
  painter.drawText(line, Qt::AlignCenter,
                   fontMetrics().elidedText(name + "  –  " + place, Qt::ElideMiddle, line.width()));
}

void PhotoPreview::resizeEvent(QResizeEvent*) {
  request();
}

void PhotoPreview::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      m_view->setPreviewOpen(false);
      return;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
      // The view's own keys move its focus, up and down by rows; modifiers mean nothing here.
      QKeyEvent plain(QEvent::KeyPress, event->key(), Qt::NoModifier);
      QCoreApplication::sendEvent(m_view, &plain);
      showPhoto(m_view->focusedIndex());
      return;
    }
    default:
      event->ignore();
  }
}

// Clicks are for the photo, not for the grid behind it.
void PhotoPreview::mousePressEvent(QMouseEvent*) {}
void PhotoPreview::wheelEvent(QWheelEvent* event) {
  event->accept();
}
void PhotoPreview::mouseDoubleClickEvent(QMouseEvent*) {
  m_view->setPreviewOpen(false);
}

}  // namespace snaplift
