#pragma once

#include <QWidget>
#include <memory>
#include <vector>

#include "app/details/FactTable.h"
#include "app/details/PhotoSums.h"
#include "widgets/thumbnails/ThumbnailLoader.h"

class QLabel;
class QPushButton;

namespace snaplift {

class PhotoFrame;

// The panel of Get Info: what is known of one photo, of several, or of a backup. What the backup
// records of a photo is there at once; what the photo's own file says comes from a worker that has
// a picture decoder read it, and is shown only while that photo is. Nothing is fetched from
// anywhere else: a position is a text. User interface's thread.
class PhotoDetails : public QWidget {
  Q_OBJECT

public:
  static constexpr int usualWidth = 280;

  explicit PhotoDetails(QWidget* parent = nullptr);
  ~PhotoDetails() override;

  // `known` is what the grid has of the photo, or null. `film` is that of a live photo, or null.
  void showPhoto(const ImageItem& photo, ImageBrowserItemPointer item, const Thumbnail* known,
                 const ImageItem* film = nullptr);
  // Photos or a backup, under that title; `others` come before the sums.
  void showSums(const QString& title, const std::vector<Fact>& others, const PhotoSums& sums);
  void showNothing();

  QSize sizeHint() const override { return {usualWidth, usualWidth}; }

  // Whether there may be more to come of the photo.
  bool isLoading() const { return m_loader && !m_loader->isIdle(); }

signals:
  void closeWanted();
  void leaveWanted();  // the keyboard is to go back to the photos

protected:
  void keyPressEvent(QKeyEvent* event) override;
  void hideEvent(QHideEvent* event) override;

private:
  void request();
  void takeResults();
  void showTitle(const QString& title);
  void showFacts();
  std::vector<Fact> recordFacts() const;
  std::vector<Fact> fileFacts() const;

  QLabel* m_title;
  PhotoFrame* m_frame;
  FactTable* m_table;
  QPushButton* m_copyPosition;

  const ImageItem* m_photo = nullptr;  // null where no single one is shown
  const ImageItem* m_film = nullptr;
  ImageBrowserItemPointer m_item;
  Thumbnail m_picture;  // the best that is known
  Thumbnail m_file;     // what its file says; Unknown and without facts until that has come
  std::shared_ptr<PhotoDetails*> m_self;  // what a hand-over holds, weakly
  std::unique_ptr<ThumbnailLoader> m_loader;
};

}  // namespace snaplift
