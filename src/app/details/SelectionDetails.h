#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

#include "app/details/FactTable.h"
#include "app/details/PhotoSums.h"
#include "widgets/thumbnails/ImageBrowserItem.h"

class QLabel;

namespace snaplift {

class ImageBrowserView;
class PhotoDetails;

// Keeps true what the window says of the selected photos or, where none is selected, of all that
// are shown: their bytes in the bottom bar and, while it is open, the panel of Get Info. Views and
// photos outlive the object. User interface's thread.
class SelectionDetails : public QObject {
  Q_OBJECT

public:
  // What the object asks for when it is told to look.
  struct Shown {
    QString title;                         // of the backup
    std::vector<Fact> backup;              // what else there is to say of it
    std::vector<const ImageItem*> photos;  // selected, else all; with the films of live photos
    int selected = 0;                      // tiles
    // Where one tile is selected.
    ImageBrowserItemPointer item;
    const ImageItem* photo = nullptr;
    const ImageItem* film = nullptr;  // of a live photo
  };
  using Look = std::function<Shown()>;

  SelectionDetails(ImageBrowserView& browser, PhotoDetails& panel, QLabel& bytes, Look look);

  // To be called when other photos are shown or selected, once or often.
  void update();
  // Opens or closes the panel.
  void setOpen(bool open);

private:
  void lookAgain();
  void tellSums(const PhotoSums& sums);

  ImageBrowserView& m_browser;
  PhotoDetails& m_panel;
  QLabel& m_bytes;
  const Look m_look;
  bool m_isDue = false;
  QString m_title;  // of what is being summed
  std::vector<Fact> m_backup;
  bool m_showsSums = false;
  PhotoSummer m_summer;
};

}  // namespace snaplift
