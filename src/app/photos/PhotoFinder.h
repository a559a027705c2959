#pragma once

#include <QObject>
#include <vector>

#include "app/photos/BackupPhotos.h"

class QAction;
class QActionGroup;

namespace snaplift {

class FindBar;
class ImageBrowserView;

// The commands and the field by which people find photos: order, direction, months, dates below the
// photos, originals alone, and a text. It keeps them, the photos' arrangement and the browser in
// step; the photo at the top of the browser stays, and so does the selection: a selected photo that
// is not shown for a while is selected again when it is, unless somebody has selected others. All
// of it but the text is somebody else's to remember, and stays for the next backup.
//
// The user interface's thread. Everything it is given outlives it.
class PhotoFinder : public QObject {
  Q_OBJECT

public:
  struct Commands {
    QActionGroup* order;      // in the order of PhotoOrder
    QActionGroup* direction;  // ascending, descending
    QAction* byMonth;
    QAction* onlyOriginals;
    QAction* dates;
    QAction* find;
  };

  PhotoFinder(BackupPhotos& photos, ImageBrowserView& browser, FindBar& bar,
              const Commands& commands);

  // The text apart, which is what stands in the field.
  void setWishes(const PhotoWishes& wishes);
  PhotoWishes wishes() const;
  void setShowsDates(bool shows);
  bool showsDates() const;

  // To be called when the photos have a new content.
  void contentDidChange();
  // Takes what somebody begins to type over the photos where it is a digit: names differ by their
  // numbers. All else jumps to a name.
  bool takesTyping(const QString& text);
  // Why no photo is shown; empty where there is one, or none to be shown.
  QString noMatchText() const;
  // Takes back what leaves every photo out: the text, else that only originals are shown.
  void showSome();

signals:
  // Other photos are shown, or in another order.
  void arranged();
  // What is to be remembered has changed.
  void settingsChanged();

private:
  void arrange();
  void keepSelection();
  void tellWhatIsHidden();
  void settingsDidChange();

  BackupPhotos& m_photos;
  ImageBrowserView& m_browser;
  FindBar& m_bar;
  const Commands m_commands;
  std::vector<int> m_selected;  // numbers of photos, shown or not; empty where the browser has them
  bool m_isArranging = false;
};

}  // namespace snaplift
