#include "widgets/promises/PromisedFilesDrag.h"

#include <QApplication>
#include <QDrag>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWidget>
#include <algorithm>

#include "widgets/promises/DragSlideBack.h"
#include "widgets/promises/PromisedFilesMimeData.h"
#include "widgets/promises/XDropRequests.h"

namespace snaplift {
namespace {

// Qt ends a drag as soon as it sees the button released, and then has the list of files asked for;
// so whoever watches for the release must see it first. Installed while the drag runs, an event
// filter of the application is asked before Qt's own.
class ReleaseWatch final : public QObject {
public:
  ReleaseWatch(QDrag& drag, PromisedFilesMimeData& data) : m_data(data) {
    connect(&drag, &QDrag::actionChanged, this,
            [this](Qt::DropAction action) { m_action = action; });
    QTimer::singleShot(0, this, [this] {
      qApp->installEventFilter(this);
      m_data.dragDidBegin();
    });
  }

  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() == QEvent::MouseMove) {
      m_data.pointerDidMove();
    }
    if (event->type() == QEvent::MouseButtonRelease && m_action != Qt::IgnoreAction &&
        !m_hasDropped) {
      m_hasDropped = true;
      m_data.willDrop();
    }
    return QObject::eventFilter(object, event);
  }

private:
  PromisedFilesMimeData& m_data;
  Qt::DropAction m_action = Qt::IgnoreAction;
  bool m_hasDropped = false;
};

}  // namespace

void dragPromisedFiles(PromisedFilesSource& source, QWidget& owner,
                       const DragAppearance& appearance) {
  // The owner may go while the drag runs; the drag itself is deleted by Qt.
  auto* drag = new QDrag(qApp);
  auto* data = new PromisedFilesMimeData(source, owner, XDirectSaveChannel::make());
  drag->setMimeData(data);
  XDropRequests::answerWith(*data);
  drag->setPixmap(appearance.picture);
  drag->setHotSpot(appearance.hotSpot);
  ReleaseWatch watch(*drag, *data);
  if (drag->exec(Qt::CopyAction) == Qt::IgnoreAction && appearance.slidesBack) {
    DragSlideBack::begin(appearance.picture, QCursor::pos() - appearance.hotSpot,
                         appearance.origin);
  }
}

QPixmap dragPicture(const QImage& photo, int count, int side, qreal devicePixelRatio,
                    const QPalette& palette) {
  QPixmap result((QSizeF(side, side) * devicePixelRatio).toSize());
  result.setDevicePixelRatio(devicePixelRatio);
  result.fill(Qt::transparent);
  QPainter painter(&result);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);

  const int room = side - 8;  // for the badge that overlaps the corner
  const QSizeF size = photo.isNull() ? QSizeF(room, 0.75 * room)
                                     : QSizeF(photo.size()).scaled(room, room, Qt::KeepAspectRatio);
  const QRectF frame((side - 8 - size.width()) / 2, 8 + (side - 8 - size.height()) / 2,
                     size.width(), size.height());
  if (photo.isNull()) {
    painter.fillRect(frame, palette.color(QPalette::Mid));
  } else {
    painter.drawImage(frame, photo);
  }
  painter.setPen(QPen(Qt::white, 1.5));
  painter.drawRect(frame.adjusted(0.75, 0.75, -0.75, -0.75));

  if (count > 1) {
    QFont font = painter.font();
    font.setPixelSize(12);
    font.setBold(true);
    painter.setFont(font);
    const QString text = QLocale().toString(count);
    const qreal width = std::max(20.0, QFontMetricsF(font).horizontalAdvance(text) + 12);
    const QRectF badge(side - width - 1, 1, width, 20);
    painter.setBrush(palette.color(QPalette::Highlight));
    painter.drawRoundedRect(badge, 10, 10);
    painter.setPen(palette.color(QPalette::HighlightedText));
    painter.drawText(badge, Qt::AlignCenter, text);
  }
  return result;
}

}  // namespace snaplift
