#pragma once

#include <QImage>
#include <QWidget>

namespace snaplift {

// A small picture as large as its place allows, never larger than it is.
class PhotoFrame : public QWidget {
  Q_OBJECT

public:
  explicit PhotoFrame(QWidget* parent = nullptr);
  void setPicture(const QImage& picture);

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  QImage m_picture;
};

}  // namespace snaplift
