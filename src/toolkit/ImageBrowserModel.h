#pragma once

#include <QAbstractListModel>

namespace snaplift {

class ImageBrowserView;

// The photos of an ImageBrowserView as its item view wants them: a number and captions. It keeps
// nothing but the number.
class ImageBrowserModel : public QAbstractListModel {
  Q_OBJECT

public:
  explicit ImageBrowserModel(ImageBrowserView* view);

  void reset(int count);
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

private:
  const ImageBrowserView* m_view;
  int m_count = 0;
};

}  // namespace snaplift
