#include "toolkit/ImageBrowserModel.h"

#include "toolkit/ImageBrowserView.h"

namespace snaplift {

ImageBrowserModel::ImageBrowserModel(ImageBrowserView* view)
    : QAbstractListModel(view), m_view(view) {}

void ImageBrowserModel::reset(int count) {
  beginResetModel();
  m_count = count;
  endResetModel();
}

int ImageBrowserModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : m_count;
}

QVariant ImageBrowserModel::data(const QModelIndex& index, int role) const {
  const bool isKnown = index.isValid() && index.row() < m_count;
  return isKnown && role == Qt::DisplayRole ? m_view->titleAtIndex(index.row()) : QVariant();
}

}  // namespace snaplift
