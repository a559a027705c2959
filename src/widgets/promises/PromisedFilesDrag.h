#pragma once

#include <QPixmap>
#include <QPoint>

class QWidget;

namespace snaplift {

class PromisedFilesSource;

// How a drag of promised files looks.
struct DragAppearance {
  QPixmap picture;
  QPoint hotSpot;          // where the pointer holds the picture
  QPoint origin;           // of the picture's top left corner as the drag begins, on the screen
  bool slidesBack = true;  // when nobody takes the files
};

// Drags promised files with the pointer and returns when the button is released or the drag given
// up; the event loop runs meanwhile. Files are copied, never moved. What the target then asks for
// is answered later, as long as `owner`, which `source` belongs to, exists. User interface's
// thread, inside the handling of a mouse event.
void dragPromisedFiles(PromisedFilesSource& source, QWidget& owner,
                       const DragAppearance& appearance);

// The picture of a drag: a photo (or a blank one, while none is decoded) of at most `side` pixels,
// and the number of photos where there are several.
QPixmap dragPicture(const QImage& photo, int count, int side, qreal devicePixelRatio,
                    const QPalette& palette);

}  // namespace snaplift
